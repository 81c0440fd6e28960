; Refused conditional statements; each reports on its own line.
	ENDC			; no block open
	ELSE
	ENDM			; outside a definition
LBL	IFEQ	0		; no label on an IF
	IFC	a+b,ab		; a character no string holds
	IFC	AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA,x
	IFC	a b		; no comma behind the first string
	IFC	a, b		; a blank ends the second string: b is left over
	IFEQ	LATER		; a name not yet defined: the block opens all the same
	ENDC
	IFDEF	123		; no name: the block opens, the name counts as undefined
	DB	0
	ENDC
	IFEQ	1+		; a bad expression opens no block
	ENDC			; so its ENDC has none to close
	IFNE	1 X		; text behind the operand: no block
LBL2	ENDC
	OPT	NOLIST,NOSUCH,SYM
	OPT	NOLIST XYZ	; a blank ends the word, XYZ is left over
	OPT	S,S,S,S,S,S,S,S,S,S,S,S,S,S,S,S,S,S,S,S
	OPT
LBL3	OPT	SYM
LATER	EQU	1
	END
