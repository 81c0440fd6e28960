; echo.asm - greets, then echoes every byte from the serial port and keeps
; the last line in external RAM. The serial routines are in serial.asm.
; Assemble:  build/ta51 examples/echo.asm examples/echo.OBJ examples/echo.LST
;
        NAME    ECHO
        EXTRN   CODE(SERIAL_INIT, PUTCHAR, GETCHAR, PUTSTR)
        EXTRN   BIT(TX_BUSY), DATA(RX_COUNT)
        PUBLIC  LINE_BUF, ECHO_ON

LINE_SIZE       EQU     80
CR              EQU     0DH
LF              EQU     0AH

ECHO_CODE       SEGMENT CODE
ECHO_XDATA      SEGMENT XDATA

        CSEG    AT 0
        LJMP    START

        BSEG    AT 8
ECHO_ON:        DBIT    1       ; echo received bytes back
LINE_DONE:      DBIT    1       ; a full line stands in LINE_BUF

        DSEG    AT 30H
LINE_LEN:       DS      1
STACK:          DS      16

        XSEG    AT 8000H
LEDS:           DS      1       ; memory-mapped LED latch

        RSEG    ECHO_XDATA
LINE_BUF:       DS      LINE_SIZE

        RSEG    ECHO_CODE
START:  MOV     SP,#STACK-1
        MOV     DPTR,#LEDS
        CLR     A
        MOVX    @DPTR,A         ; all LEDs off
        LCALL   SERIAL_INIT
        SETB    ECHO_ON
        CLR     LINE_DONE
        MOV     DPTR,#BANNER
        LCALL   PUTSTR
NEW_LINE:
        MOV     LINE_LEN,#0
        MOV     DPTR,#LINE_BUF
NEXT:   LCALL   GETCHAR
        JNB     ECHO_ON,STORE
        JB      TX_BUSY,$
        LCALL   PUTCHAR
STORE:  MOVX    @DPTR,A
        INC     DPTR
        INC     LINE_LEN
        CJNE    A,#CR,NOT_END
        SETB    LINE_DONE
        SJMP    NEW_LINE
NOT_END:
        MOV     A,LINE_LEN
        CJNE    A,#LINE_SIZE,NEXT
        SJMP    NEW_LINE

BANNER: DB      'ta51 echo, say something', CR, LF, 0
        EVEN
LIMITS: DW      LINE_SIZE, LINE_BUF

        END

What the program does, checked in the s51 simulator by the example test:
linked with serial.asm, it sends the banner and then waits in GETCHAR for
the first byte, with the LEDs off, echo on, an empty line and DPTR at
LINE_BUF, which the map puts at 0000H of external RAM.
; s51: link echo.asm serial.asm
; s51: stop GETCHAR
; s51: serial "ta51 echo, say something\r\n"
; s51: xram 8000 00
; s51: iram 30 00
; s51: iram 21 mask 03 01
; s51: sfr 81 32
; s51: sfr 82 00 00
