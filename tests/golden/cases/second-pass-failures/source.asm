; Statements that pass the first pass and fail in the second: the object
; file that the second pass began is deleted.
	PUBLIC	NEVER		; announced, never defined
	EXTRN	CODE(HALF)
	PUBLIC	HALF		; external and public, never defined
	PUBLIC	ONLYDECL
	DB	MISSING		; no such label, found out in the second pass
	DB	ONLYDECL	; announced only: no value to store
	DW	1,MISSING2,3
	FAIL	stop here	; a warning, not an error
	NOP
	END
