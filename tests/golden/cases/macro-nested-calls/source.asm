; Calls inside calls: NARG counts the arguments of the call that runs, the
; arguments of an outer call reach the operands of an inner one, and a label
; generated in one call is used ahead of its line in both passes.
INNER	MACRO
	DB	NARG,1\0
	ENDM
OUTER	MACRO
	DB	NARG
	INNER	\1,\2,\0
	DB	NARG
	SJMP	\.1
	NOP
\.1:	INNER	9
	INNER	\.2	; no generated label in the operands of a call
	ENDM
NAMED	.MACRO	first,second
	DB	NARG,first
	INNER	second
	DB	NARG
	.ENDM
	CSEG	AT 0
	MEX
	OUTER	1,2,3
	OUTER	4
	NAMED	7, 8
	END
