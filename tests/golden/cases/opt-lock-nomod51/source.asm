; No predefined names at all.
	MOD51			; no effect: /NOMOD51 is locked
	CSEG	AT 0
	IFDEF	TR2		; 0: not even the 8052 names are there
	DB	1
	ENDC
	IFDEF	acc		; 0
	DB	2
	ENDC
ACC	EQU	5		; a free name
	DB	ACC		; 05, where the predefined ACC would give E0
	END
