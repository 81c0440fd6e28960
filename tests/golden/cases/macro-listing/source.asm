; What the list file shows of definitions, calls and expansions.
	NOMD
QUIET	MACRO
	NOP
	ENDM
	MD
KEEP	MACRO	C
; a comment line of the body, kept under C
	NOP	; a comment behind a statement stays either way
	ENDM
DROP	MACRO
; a comment line of the body, not kept
	INC	A	; behind a statement
	ENDM;a comment right behind ENDM
	CSEG	AT 0
	KEEP		; MC on, MEX off: the call line alone
	MEX
	KEEP		; the expansion too, its comment line included
	DROP		; no comment line in this body
LBL:	QUIET		; a label on a call line
	NOMC
	DROP		; MEX without MC: the expansion, not the call line
	NOMEX
	DROP		; neither
	END
