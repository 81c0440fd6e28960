; OPT takes several words; the command line locks what it set.
	OPT	SYM, UNA, NOCLIST ; UNA stays off: /NOUNA locked it
	IFEQ	1		; not listed: NOCLIST took effect
	DB	0		; not listed: UNA is locked off
	ENDC
	OPT	CLIST,SYM,SYM,SYM,SYM,SYM,SYM,SYM,SYM,SYM,SYM,SYM,SYM,SYM,SYM,SYM,SYM,SYM,MEX
	IFEQ	0		; listed again
	DB	1
	ENDC
	NOCLIST			; an option keyword alone is a statement too
	IFEQ	0
	DB	2
	ENDC
COUNT	EQU	2
	END
