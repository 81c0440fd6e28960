; Every order of PUBLIC, EXTRN and definition that a module may use.
	PUBLIC	AHEAD		; announced, then defined by a label
	PUBLIC	AHEAD		; announced twice: still one symbol
	EXTRN	CODE(TWICE)
	EXTRN	CODE (TWICE)	; the same external again, blank before (
	EXTRN	CODE(BOTH)
	PUBLIC	BOTH		; external and public: defined here after all
	EXTRN	NUMBER(UNUSED), BIT(FLAG)
	PUBLIC	NUM
	EXTRN	DATA(LATE)
	PUBLIC	LATE_PUB
	EXTRN	NUMBER(ANYTYPE)
	PUBLIC	ANYTYPE
	EXTRN	CODE(__cstart)
	EXTRN	DATA(byte), DATA(BYTE)
PROG	SEGMENT	CODE
	RSEG	PROG
AHEAD:	NOP
BEHIND:	NOP
	PUBLIC	BEHIND		; defined, then announced
BOTH:	LCALL	TWICE
	JB	FLAG,$
	MOV	A,byte
	MOV	A,BYTE
NUM	EQU	1234H
	PUBLIC	LATE_PUB
	EXTRN	CODE(LATE_PUB)	; public already: stays public
LATE_PUB:	RET
ANYTYPE	DATA	40H
ABSADR	DATA	30H
	PUBLIC	ABSADR
	CSEG	AT 100H
INABS:	NOP
	PUBLIC	INABS
	END
