; LIST is locked off: nothing of this file is listed.
	LIST
	OPT	LIST,LISTF,SYM
	DB	1
	LISTF
	FAIL
	DB	2
	END
