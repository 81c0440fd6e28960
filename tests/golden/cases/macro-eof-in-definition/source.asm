; A definition that the file ends inside.
	CSEG	AT 0
	NOP
OPEN	MACRO
	NOP
ENDM		; in the first column: a body line, no terminator
	.ENDM		; the terminator of a named macro only
