; OBJOFF has no effect while IHEX is on.
	BIN			; no effect: /IHEX is locked
	CSEG	AT 0
	NOP
	OBJOFF
	DB	1,2
	END
