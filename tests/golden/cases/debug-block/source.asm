; Ready-made debug records of a compiler, copied with their expressions
; worked out. The DEBUG statement turns the debug blocks on.
	DEBUG
	PUBLIC	MAIN
K	EQU	7
CODE1	SEGMENT	CODE
	EXTRN	CODE(EXT)
	RSEG	CODE1
	NOP
MAIN:	MOV	A,#1
	LCALL	EXT
	__DEBUG
BB1,0,04"MOD".
BE1.
   BB3,0,03MOD.
BE3.
BB4,0,04MAIN,0	MAIN

ASN9C50	MAIN+2
ASN9C51	EXT
ASN9C52	 K*2
; a comment line is no record
NN9C53,01X.
BE4	MAIN+6
__DEBUGEND
	NOP
this line is never read
