; The command line fixes the processor and case folding.
	CSEG	AT 0
	8051			; no effect: /8052 is locked
Loop:	SETB	TR2
	80535
	MOV	A,T2CON
	mov	a,rldh
	SJMP	LOOP
	LJMP	loop
	END
