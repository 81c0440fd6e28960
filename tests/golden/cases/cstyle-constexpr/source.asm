	CSEG	AT 0
#define TWO	2
#define THREE	TWO+1
#define EMPTY
#if 1 + 2 * 3 == 7 && (1 + 2) * 3 == 9 && 7 % 3 == 1
	DB	1
#endif
#if -7 / 2 == -3 && -7 % 3 == -1 && -16 >> 2 == -4 && 1 << 4 == 16
	DB	2
#endif
#if (1 | 2 ^ 3) == 1 && (6 & 3) == 2 && (1 | 6 & 3) == 3 && 1 == 1 != 0
	DB	3
#endif
#if 1 < 2 && 2 <= 2 && !(3 >= 4) && !5 == 0 && ~0 == -1 && - - 1 == 1
	DB	4
#endif
#if THREE * 2 == 4 && defined TWO && defined(EMPTY) && !defined ( NOSUCH )
	DB	5
#endif
#if NOSUCH == 0 && NOSUCH + 1 == 1 && 'A' == 65 && 'AB' == 0x4142
	DB	6
#endif
#if 0x1F == 31 && 010 == 10 && 0xFFFFFFFF == -1 && 0x80000000 < 0
	DB	7
#endif
#if 2147483647 + 1 == -2147483647 - 1 && (-2147483647 - 1) / -1 < 0 && 1 << 33 == 2
	DB	8
#endif
#if 0 ? 0xEE : 1 ? 9 : 0
	DB	9
#endif
#if 0 && 1 / 0 || 1 || 1 % 0
	DB	10
#endif
#if 1 & 0
	DB	0EEH
#endif
	END
