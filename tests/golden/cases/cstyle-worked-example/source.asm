#define SIZE 4
#define PAIR(a,b) a##b + SIZE
LOHI	EQU	10H
	CSEG	AT 0
        MOV  A,#PAIR(LO,HI)
	END
