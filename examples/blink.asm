; blink.asm - toggles P1.0 with a software delay.
; Assemble:  build/ta51 examples/blink.asm examples/blink.OBJ examples/blink.LST
;
COUNT   EQU     R7

        CSEG    AT 0
        LJMP    START

        CSEG    AT 30H
START:  MOV     SP,#5FH
LOOP:   CPL     P1.0
        CALL    DELAY
        SJMP    LOOP

DELAY:  MOV     COUNT,#200
WAIT:   MOV     R6,#250
INNER:  DJNZ    R6,INNER
        DJNZ    COUNT,WAIT
        RET

        END

What the program does, checked in the s51 simulator by the example test:
the first time it reaches INNER (003EH) it has set the stack, cleared P1.0
and called DELAY, which loaded its two counters.
; s51: stop 003E
; s51: sfr 90 FE
; s51: sfr 81 61
; s51: iram 06 FA C8
