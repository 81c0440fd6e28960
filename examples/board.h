/* board.h: the board's wiring, shared by the C code of the firmware and by
   its assembler modules. Only #define and #if here, so both can read it. */
#ifndef BOARD_H
#define BOARD_H

#define BOARD_REV 2          /* revision 2 drives the LED low */
#define LED_PIN 0x90         /* P1.0 as a bit address */
#define DELAY_COUNT 200

#if BOARD_REV >= 2
#define LED_ACTIVE_LOW 1
#else
#define LED_ACTIVE_LOW 0
#endif

#endif
