; The same for BIT: a bit address taken from a SET symbol before it is set.
	NOP
FLAG	BIT	V AND 7FH
V	SET	10H
	END
