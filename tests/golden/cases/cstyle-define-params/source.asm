; C-style macros with and without parameters
#define BASE	30H
#define OFFSET(n)	(BASE + n)
#define JOIN(a, b)	a ## b
#define CAT3(a,b,c)	a##b##c
#define LOAD(r, v)	MOV r,#v
#define NOTHING
#define F()	11H
#define G (1) + 1
#define DOUBLE(x)	(2*(x))
#define ADD(a,b)	a+b
#define KEEP	p ## q
#define A1	A2
#define A2	5	// the body ends before the comment
	CSEG	AT 0
LABEL1	EQU	77H
	LOAD(R0, OFFSET(2))
	MOV	A,#JOIN(LAB, EL1)
	DB	CAT3(0,1,H)
	DB	F, NOTHING 3	; F() keeps its parentheses, KEEP its ##
	DB	G
	DB	DOUBLE(DOUBLE(3))
	DB	ADD(1, 2)	; ADD(5,6,7) ADD(8) ADD((1,2)) ADD(b,a)
	DB	A1, 'A1'	; "A1" stays in double quotes, not in single ones
	MOV	A,#A1	; A1 in a comment behind a statement is replaced too
; A1 in a comment line stays
#undef A2
#define A2	6 /* a new body */
	DB	A1
	END
