; PICK: a %IF filter in a body, with its ( on a line of its own. A value
; above 0 assembles the THEN section; 0 and -1 the ELSE section.
%*DEFINE (PICK(X))
(
%IF (%X) THEN
        NOP
ELSE
        RET
FI
)
        CSEG  AT 0
        %PICK(1)
        %PICK(0)
        %PICK(-1)
        END
