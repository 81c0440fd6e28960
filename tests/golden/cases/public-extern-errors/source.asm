; Wrong orders and wrong names: each line reports, the next goes on.
	EXTRN	CODE(TWOTYPES)
	EXTRN	DATA(TWOTYPES)	; Duplicate label
	EXTRN	CODE(EXT)
EXT:	NOP			; Duplicate label: external, not public
	EXTRN	DATA(DTYPE)
	PUBLIC	DTYPE
DTYPE:	NOP			; Type mismatch: code label for a DATA external
REG	EQU	R3
	PUBLIC	REG		; Invalid symbol type
PROG	SEGMENT	CODE
	PUBLIC	PROG		; Invalid symbol type
	PUBLIC	DECLREG
DECLREG	EQU	R4		; Invalid symbol type, defined all the same
	EXTRN	CODE X		; Missing (
	EXTRN	STRING(X)	; Segment type expected
	EXTRN	CODE(X, Y	; Missing )
	PUBLIC	OK1, 9BAD, OK2	; Syntax error: OK1 stays declared
	PUBLIC	NEVER
	MOV	A,#REG
	END
