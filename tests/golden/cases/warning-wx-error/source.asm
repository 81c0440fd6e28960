	INCLUDE	part.inc
	NOP
