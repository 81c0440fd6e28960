; split/sum.asm - adds up the COUNT squares at XBUF into SUM_HI:SUM_LO,
; keeping a copy of them in indirect RAM, and sets SUM_READY. The 16-bit
; addition comes from the library MATHLIB.LIB.
;
        NAME    SUM
        PUBLIC  SUM_SQUARES, SUM_LO, SUM_HI, SUM_READY, COPY
        EXTRN   CODE(ADD_ACC), DATA(COUNT), XDATA(XBUF)
        INCLUDELIB MATHLIB.LIB

SUM_CODE        SEGMENT CODE INPAGE
SUM_DATA        SEGMENT DATA
SUM_BITS        SEGMENT BIT
SUM_IDATA       SEGMENT IDATA

        RSEG    SUM_DATA
SUM_LO: DS      1
SUM_HI: DS      1

        RSEG    SUM_BITS
SUM_READY:      DBIT    1

        RSEG    SUM_IDATA
COPY:   DS      16

        RSEG    SUM_CODE
SUM_SQUARES:
        CLR     SUM_READY
        MOV     R2,#0           ; R3:R2 is the sum
        MOV     R3,#0
        MOV     R7,COUNT
        MOV     R0,#COPY
        MOV     DPTR,#XBUF
LOOP:   MOVX    A,@DPTR
        MOV     @R0,A
        INC     R0
        INC     DPTR
        LCALL   ADD_ACC
        DJNZ    R7,LOOP
        MOV     SUM_LO,R2
        MOV     SUM_HI,R3
        SETB    SUM_READY
        RET

        END
