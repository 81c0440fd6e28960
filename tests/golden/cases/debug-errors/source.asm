; Faults of the debug statements found in the first pass.
	CSEG
	__SLINE	1
	__SFILE
	__SFILE	"main.c
	__SFILE	main.c	extra
	__SFILE	"main.c"
	__SLINE	LATER
	__SLINE	2	extra
BLOCK	MACRO
	__DEBUG
	ENDM
	BLOCK
LATER	EQU	3
	__DEBUG
	NOP	; never read
