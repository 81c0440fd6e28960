; The #define table stands through both passes.
	CSEG	AT 0
#include "defs.h"
#ifdef BOARD_REV
	DB	BOARD_REV	; the second pass knows the name from below
#else
	DB	0FFH		; only the first pass comes here
#endif
	MOV	A,#LIMIT
#include "code.h"
	NOP
#define BOARD_REV	2
#define LIMIT	30H
	END
