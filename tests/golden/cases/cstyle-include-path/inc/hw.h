#ifndef HW_H
#define HW_H
#define LED	P1.0
#define DELAY	10
#endif
