; Line entries of the DEBUG option for lines that expand.
%*DEFINE (TWO) (
	NOP
	NOP
)
%*DEFINE (NONE) (
Y	SET	2
)
PAIR:	MACRO
	INC	A
	INC	A
	ENDM
EMPTY:	MACRO
Z	SET	1
	ENDM
	CSEG
	%TWO
	%NONE
	MOV	A,#1
	PAIR
	EMPTY
	DB	1
$INCLUDE(part.inc)
	%TWO
	END
