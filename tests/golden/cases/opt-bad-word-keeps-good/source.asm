; A bad word in OPT stops the statement, not the words ahead of it.
	DB	1
	OPT	LISTF,NOSUCH
	DB	2		; listed: LISTF took effect in the first pass
	OPT	SYM, MEX BAD	; SYM and MEX take effect, BAD is refused
VALUE	EQU	3
	END
