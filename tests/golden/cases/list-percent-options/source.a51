; Percent macros under the list options.
	NOMD
%*DEFINE (HIDDEN) (
	NOP
)
	MD
%*DEFINE (TWICE(X)) (
	DB	%X
	DB	%X
)
	CSEG	AT 0
	NOMEX
	NOMC
	%TWICE(5)	; listed with its lines: MEX and MC are for MACRO
	%HIDDEN
	END
