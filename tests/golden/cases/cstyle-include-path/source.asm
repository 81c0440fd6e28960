	CSEG	AT 0
#include <hw.h>
#include <hw.h>
#include "local.h"
	DB	DELAY
	SETB	LED
	MOV	R7,#COUNT
	END
