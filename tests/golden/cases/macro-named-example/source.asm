; The named PAIR macro: parameters by name, && to join a parameter to the
; text behind it, \@ for the label of the call. SEVEN uses up the first
; seven generated labels, so that the first PAIR call gets number 7.
SEVEN	MACRO
\.1:	NOP
\.2:	NOP
\.3:	NOP
\.4:	NOP
\.5:	NOP
\.6:	NOP
\.7:	NOP
	ENDM
PAIR    .MACRO  reg,val
go\@:   MOV     reg,#val
        DJNZ    reg,go\@
        MOV     A,reg&&_copy
        .ENDM
R2_copy	EQU	30H
R3_copy	EQU	31H
	CSEG	AT 0
	SEVEN
	MEX
        PAIR    R2,5
	PAIR	R3 , 6		; blanks inside an argument go
	END
