; split/lib_add.asm - a module of the library MATHLIB.LIB: ADD_ACC adds A to
; the 16-bit number in R3:R2. Linked because sum.asm calls it.
;
        NAME    LIB_ADD
        PUBLIC  ADD_ACC

LIB_ADD_CODE    SEGMENT CODE

        RSEG    LIB_ADD_CODE
ADD_ACC:
        ADD     A,R2
        MOV     R2,A
        CLR     A
        ADDC    A,R3
        MOV     R3,A
        RET

        END
