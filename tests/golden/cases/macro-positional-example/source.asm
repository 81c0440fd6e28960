; The positional BLINK macro: argument 0 and argument 1 by number, a label
; that each call generates anew, the second argument in parentheses.
BLINK   MACRO
        MOV   R0,\0
\.1:    CPL   P1.0
        DJNZ  R0,\.1
        MOV   A,\1
        ENDM
        CSEG  AT 0
        BLINK #10,(20+3)
        MEX
        BLINK #5,(20 + 3)
        NOMEX
        BLINK #1,7
        END
