	CSEG	AT 0
; no block open, then an assembled one
#if 1
	DB	1
#endif
; a chain: only the first section whose test holds
#if 0
	DB	0EEH
#elif 0
	DB	0EEH
#elif 2
	DB	2
#elif 1
	DB	0EEH
#else
	DB	0EEH
#endif
; #else of a false block
#ifdef NOSUCH
	DB	0EEH
#else
	DB	3
#endif
; a second #else behind an assembled section assembles nothing more
#ifndef NOSUCH
	DB	4
#else
	DB	0EEH
#else
	DB	0EEH
#endif
; blocks inside a dropped section are counted, their tests are not run
#if 0
#if 1/0
	DB	0EEH
#elif 1/0
#else
	DB	0EEH
#endif
#else
	DB	5
#endif
; a false block inside an assembled one; #elif behind it is not tested
#if 1
#if 0
	DB	0EEH
#endif
	DB	6
#elif 1/0
	DB	0EEH
#endif
; #define and #if act in a false IF section too
	IFEQ	1
#define FROM_FALSE_IF 7
#if 0
#endif
	ENDC
	DB	FROM_FALSE_IF
	END
