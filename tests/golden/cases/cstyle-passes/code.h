#ifndef CODE_H
#define CODE_H
	CLR	PORT.0	; code under a guard: first pass only
#endif
