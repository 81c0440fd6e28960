; split/main.asm - the main module of a program split over three modules and
; a library: it builds the squares of 0 to 7 in external RAM (squares.asm),
; adds them up with a copy in indirect RAM (sum.asm, which takes its 16-bit
; adder from the library MATHLIB.LIB) and stops in HALT.
;
; Build (see README): assemble main.asm, squares.asm, sum.asm and the two
; library modules, join the library modules into MATHLIB.LIB, then
;   tl51 -o split.hex main.OBJ squares.OBJ sum.OBJ
;
        NAME    MAIN
        EXTRN   CODE(MAKE_SQUARES, SUM_SQUARES)
        EXTRN   BIT(SUM_READY)
        PUBLIC  HALT, COUNT, FLAGS, STACK

MAIN_CODE       SEGMENT CODE
MAIN_FLAGS      SEGMENT DATA BITADDRESSABLE
MAIN_VARS       SEGMENT DATA
MAIN_STACK      SEGMENT IDATA

        CSEG    AT 0
        LJMP    START

        RSEG    MAIN_FLAGS
FLAGS:  DS      1               ; bit 0: finished, bit 1: failed

        RSEG    MAIN_VARS
COUNT:  DS      1               ; how many squares

        RSEG    MAIN_STACK
STACK:  DS      16

        RSEG    MAIN_CODE
START:  MOV     SP,#STACK-1
        MOV     FLAGS,#0
        MOV     COUNT,#8
        LCALL   MAKE_SQUARES
        LCALL   SUM_SQUARES
        JNB     SUM_READY,FAILED
        SETB    FLAGS.0
HALT:   SJMP    HALT
FAILED: SETB    FLAGS.1
        SJMP    FAILED

        END

What the program leaves, checked in the s51 simulator by the example test
(the addresses come from the map):
; s51: link main.asm squares.asm sum.asm lib_add.asm=MATHLIB.LIB lib_mul.asm=MATHLIB.LIB
; s51: stop HALT
; s51: iram COUNT 08
; s51: iram FLAGS mask 03 01
; s51: iram SUM_LO 8C 00
; s51: iram COPY 00 01 04 09 10 19 24 31
; s51: xram XBUF 00 01 04 09 10 19 24 31
; s51: sfr 81 STACK-1
