#define SELF	SELF
#define PING	PONG
#define PONG	PING
#define E0	x x
#define E1	E0 E0
#define E2	E1 E1
#define E3	E2 E2
#define E4	E3 E3
#define E5	E4 E4
#define E6	E5 E5
#define E7	E6 E6
#define E8	E7 E7
#define E9	E8 E8
#define E10	E9 E9
#define E11	E10 E10
#define E12	E11 E11
#define E13	E12 E12
#define E14	E13 E13
#define E15	E14 E14
#define TWO(a, b)	a b
#define SELFCALL(x)	x(x)
	CSEG	AT 0
SELF	EQU	1
PING	EQU	2
PONG	EQU	3
	DB	SELF, PING, PONG
	DB	E15
	DB	SELFCALL(SELFCALL)
	DB	TWO(1, 2
	DB	TWO
#define
#undef
#ifdef
#endif
#else
#if 1/0
#endif
#if (-2147483647 - 1) / -1 == -2147483647 - 1
	DB	4
#endif
#endif
#if 1
	DB	5
