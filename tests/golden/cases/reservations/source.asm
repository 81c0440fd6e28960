; Room with no data: DS, DBIT, EVEN, ALIGN and ORG, their ASP records, and
; the reserved units of code segments in ASQ.
PROG	SEGMENT	CODE
BITS	SEGMENT	BIT
VARS	SEGMENT	DATA
	RSEG	PROG
	NOP
BUF:	DS	10H		; the label stands at the start of the room
	EVEN			; odd: one byte of room
E1:	EVEN			; even already: nothing, the label stays
	NOP
	ALIGN	4		; from 13H to 14H
A4:	ALIGN	4		; aligned already
	DB	1
A8:	ALIGN	8		; the label stands behind the gap
	DS	0		; no room, still a record
	ORG	20H		; ORG in a relocatable segment is room too
	NOP
	RSEG	BITS
F1:	DBIT	3		; bits: no ASQ, no bytes
F2:	DBIT	1
	RSEG	VARS
V1:	DS	2
	EVEN
	CSEG	AT 100H
	NOP
	DS	5		; an absolute code segment has its ASQ too
	NOP
	BSEG	AT 10H
AB:	DBIT	2
	END
