; blinker.a51: blinks the board's LED. The pin, the delay and the board
; variant come from board.h, which the C code of the firmware includes too;
; the macros are written in the percent language of the .a51 dialect.
#include "board.h"

; LED(ON): ON is 1 to light the LED, 0 to put it out. The variant decides
; which pin level lights it.
%*DEFINE (LED(ON)) (
%IF (%ON XOR LED_ACTIVE_LOW) THEN
        SETB  LED_PIN
ELSE
        CLR   LED_PIN
FI
)

; DELAY(COUNT): a busy loop of COUNT turns, with a label of its own at
; every call.
%*DEFINE (DELAY(COUNT)) LOCAL WAIT (
        MOV   R7,#%COUNT
%WAIT:  DJNZ  R7,%WAIT
)

        CSEG  AT 0
START:  %LED(1)
        %DELAY(DELAY_COUNT)
        %LED(0)
        %DELAY(DELAY_COUNT)
        SJMP  START
        END
