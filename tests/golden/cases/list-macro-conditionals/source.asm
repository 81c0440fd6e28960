; Macros and conditionals under the list options.
	NOMD
INNER	MACRO
	DB	\0
	ENDM
	MD
OUTER	MACRO
	INNER	\0+1
	IFNE	\0
	INNER	\0+2
	ENDC
	ENDM
	CSEG	AT 0
	OUTER	0		; NOMEX: the call line alone
	MEX
	OUTER	0		; the skipped line is not listed: UNA is off
	UNA
	OUTER	0		; now it is, as written
	NOCLIST
	OUTER	1		; no IF, no ENDC
	CLIST
	NOMC
	OUTER	1		; no call lines, the outer's nor the inner's
	MC
	NOMEX
	OUTER	0		; NOMEX hides the skipped lines too, UNA or not
	END
