; split/lib_mul.asm - a module of the library MATHLIB.LIB: MUL_ACC multiplies
; A by B into R3:R2. Nothing in the program calls it, so it is not linked.
;
        NAME    LIB_MUL
        PUBLIC  MUL_ACC

LIB_MUL_CODE    SEGMENT CODE

        RSEG    LIB_MUL_CODE
MUL_ACC:
        MUL     AB
        MOV     R2,A
        MOV     R3,B
        RET

        END
