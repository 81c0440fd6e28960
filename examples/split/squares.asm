; split/squares.asm - writes the squares of 0 to COUNT-1 to XBUF in external
; RAM, looked up in a table that starts a code page.
;
        NAME    SQUARES
        PUBLIC  MAKE_SQUARES, XBUF
        EXTRN   DATA(COUNT)

SQ_TABLE        SEGMENT CODE PAGE       ; MOVC A,@A+DPTR indexes it from its start
SQ_CODE         SEGMENT CODE INBLOCK    ; ACALL inside stays in one 2K block
SQ_XBUF         SEGMENT XDATA

        RSEG    SQ_TABLE
TABLE:  DB      0, 1, 4, 9, 16, 25, 36, 49, 64, 81, 100, 121, 144, 169, 196, 225

        RSEG    SQ_XBUF
XBUF:   DS      16

        RSEG    SQ_CODE
MAKE_SQUARES:
        MOV     R7,COUNT
        MOV     R6,#0
        MOV     DPTR,#XBUF
NEXT:   MOV     A,R6
        ACALL   SQUARE
        MOVX    @DPTR,A
        INC     DPTR
        INC     R6
        DJNZ    R7,NEXT
        RET

; A = A * A, for A below 16.
SQUARE: PUSH    DPH
        PUSH    DPL
        MOV     DPTR,#TABLE
        MOVC    A,@A+DPTR
        POP     DPL
        POP     DPH
        RET

        END
