; Delay loops, register saving and a build variant, the way 8051 firmware
; wraps its idioms in macros and picks its variants with IF.
;
; VARIANT 1 is a board with a 12 MHz crystal, VARIANT 2 one with 24 MHz: on
; the faster board every millisecond runs the inner loop twice.

VARIANT EQU     2

        IFEQ    VARIANT-1
LOOPS_PER_MS EQU 250            ; 250 x DJNZ of 2 us at 12 MHz
        ELSE
LOOPS_PER_MS EQU 250            ; the same count, run twice at 24 MHz
TWICE   EQU     1
        ENDC

; DELAY ms: waits about `ms` milliseconds (1 to 255). Uses R6 and R7.
DELAY   MACRO
        MOV     R7,#\0
\.1:    MOV     R6,#LOOPS_PER_MS
\.2:    DJNZ    R6,\.2
        IFDEF   TWICE
        MOV     R6,#LOOPS_PER_MS
\.3:    DJNZ    R6,\.3
        ENDC
        DJNZ    R7,\.1
        ENDM

; SAVE and RESTORE keep the registers that an interrupt routine uses.
SAVE    MACRO
        PUSH    ACC
        PUSH    PSW
        PUSH    DPL
        PUSH    DPH
        ENDM

RESTORE MACRO
        POP     DPH
        POP     DPL
        POP     PSW
        POP     ACC
        ENDM

; TOGGLE pin: flips one port pin.
TOGGLE  MACRO
        CPL     \0
        ENDM

; WAITFOR flag, with a named parameter: spins until the bit is set.
WAITFOR .MACRO  flag
        JNB     flag,$
        .ENDM

        CSEG    AT 0
        LJMP    START
        ORG     $+8             ; timer 0 interrupt at 000BH
        LJMP    TIMER0

        ORG     30H
START:  MOV     SP,#5FH
        MOV     TMOD,#01H
        SETB    ET0
        SETB    EA
        SETB    TR0
        MEX                     ; list the expansions from here on
MAIN:   TOGGLE  P1.0
        DELAY   100
        TOGGLE  P1.1
        DELAY   250
        WAITFOR P3.2            ; until the button is pressed
        SJMP    MAIN

TIMER0: SAVE
        MOV     TH0,#HIGH(-1000)
        MOV     TL0,#LOW(-1000)
        INC     R5
        RESTORE
        RETI
        END

What the program does, checked in the s51 simulator by the example test:
at the SJMP MAIN that ends the first round (005BH) both LEDs have been
toggled, both delays have run down their counters, and the stack is back
where START put it.
; s51: stop 005B
; s51: sfr 90 FC
; s51: sfr 81 5F
; s51: iram 06 00 00
