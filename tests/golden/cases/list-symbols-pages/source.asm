; The symbol table across pages.
; Pages of 12 lines hold 9 listed lines behind the header, so the 41 lines
; of this file end with 5 on the fifth page, and the table starts there
; with 4 lines left. Its symbols break to a new page after one row, its
; bit addresses after three.
; (This line only brings the count to 41.)
	PAGE	12
	SYM
	CSEG	AT 10H
ALPHA:	NOP
BETA:	NOP
GAMMA	EQU	3
DELTA	EQU	4
EPSILON	EQU	1234H
ZETA	EQU	6
ETA	EQU	7
THETA	EQU	8
IOTA	EQU	9
KAPPA	EQU	10
LAMBDA	EQU	11
MU	EQU	12
NU	EQU	13
XI	EQU	14
ON	BIT	0
OFF	BIT	1
READY	BIT	2
BUSY	BIT	3
DONE	BIT	4
ERR	BIT	5
IDLE	BIT	6
RUN	BIT	7
STOP	BIT	8
WAIT	BIT	9
HOLD	BIT	10
FULL	BIT	11
EMPTY	BIT	12
CNT	EQU	R3
PTR	SET	R1
	USING	0
	USING	2
	END
