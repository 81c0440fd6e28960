; serial.asm - polled serial port routines, 9600 baud from an 11.0592 MHz
; crystal. Linked with echo.asm, which calls them through EXTRN.
; Assemble:  build/ta51 examples/serial.asm examples/serial.OBJ examples/serial.LST
;
        NAME    SERIAL
        PUBLIC  SERIAL_INIT, PUTCHAR, GETCHAR, PUTSTR
        PUBLIC  TX_BUSY, RX_COUNT

BAUD_9600       EQU     0FDH    ; timer 1 reload value
SCON_MODE1      EQU     50H     ; 8 data bits, receiver on

SERIAL_CODE     SEGMENT CODE
SERIAL_BITS     SEGMENT BIT
SERIAL_DATA     SEGMENT DATA

        RSEG    SERIAL_BITS
TX_BUSY:        DBIT    1       ; set while a byte is being sent

        RSEG    SERIAL_DATA
RX_COUNT:       DS      1       ; bytes received since SERIAL_INIT

        RSEG    SERIAL_CODE
SERIAL_INIT:
        MOV     SCON,#SCON_MODE1
        MOV     TMOD,#20H       ; timer 1 in 8-bit auto-reload mode
        MOV     TH1,#BAUD_9600
        SETB    TR1
        CLR     TX_BUSY
        MOV     RX_COUNT,#0
        RET

; Sends the byte in A.
PUTCHAR:
        SETB    TX_BUSY
        MOV     SBUF,A
WAIT_TX:
        JNB     TI,WAIT_TX
        CLR     TI
        CLR     TX_BUSY
        RET

; Waits for a byte and returns it in A.
GETCHAR:
        JNB     RI,GETCHAR
        CLR     RI
        MOV     A,SBUF
        INC     RX_COUNT
        RET

; Sends the zero-terminated string at DPTR in code memory.
PUTSTR:
        CLR     A
        MOVC    A,@A+DPTR
        JZ      PUTSTR_END
        ACALL   PUTCHAR
        INC     DPTR
        SJMP    PUTSTR
PUTSTR_END:
        RET

        END
