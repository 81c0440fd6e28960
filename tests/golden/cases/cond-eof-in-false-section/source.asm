; The file ends inside a false section.
	IFEQ	1
	DB	1
	  IFEQ	0
	  ENDC
	DB	2
