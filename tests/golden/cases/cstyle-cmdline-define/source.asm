	CSEG	AT 0
#ifdef DEBUG
	DB	0DBH
#endif
#if BOARD == 2
	DB	SIZE
#else
	DB	0EEH
#endif
#ifndef RELEASE
	DB	1
#endif
	END
