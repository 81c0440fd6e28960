; A SET value read before it is set: the first pass sees the undefined
; marker, the second pass the last value set, so DATA stops the run.
	NOP
ADDR	DATA	LOW(V)
V	SET	20H
	NOP
	END
