; OBJOFF passes the lock of /OBJ.
	IHEX			; no effect: /BIN is locked
	NOOBJ			; no effect: /OBJ is locked
	CSEG	AT 0
	NOP
	OBJOFF
	DB	1,2
	END
