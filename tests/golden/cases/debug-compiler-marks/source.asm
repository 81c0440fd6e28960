; A compiler's output: __SFILE names the C file, __SLINE the line of the code
; behind it. The field of LCALL, ahead of the first __SFILE, has no source
; reference all the same.
	EXTRN	CODE(EXT)
	CSEG	AT	0
	LCALL	EXT
	__SFILE	"main.c"
PROG	SEGMENT	CODE	BANK,1,PORT,90H
	RSEG	PROG
	__SLINE	10
MAIN:	MOV	A,#1
	__SLINE	11
	RET
	__SFILE	util.c
	__SLINE	3
	NOP
	DSEG	AT	30H
	__SLINE	4
	CSEG	AT	100H
	__SLINE	5
	NOP
	__SFILE	empty.c
	END
