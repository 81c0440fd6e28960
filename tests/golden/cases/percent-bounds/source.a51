; Bad input to the percent language: each case ends in one message, and the
; pass goes on with the next line.
%*DEFINE (SELF(A)) (
        DB    %A)
%*DEFINE (NOFI(X)) (
%IF (%X) THEN
        NOP
)
%*DEFINE (TWO(A,B)) (
        DB    %A,%B)
%*DEFINE (DEEP) (
        %DEEP
        NOP)
%*DEFINE (TAIL) (
        NOP
        %TAIL)
%*DEFINE NAME (NOP)
%*DEFINE (F(A,)) (NOP)
LAB:    %*DEFINE (G) (NOP)
        CSEG  AT 0
        %SELF(%A)
        %SELF(x%A)
        %NOFI(1)
        %NOFI(0)
        %TWO(1)
        %TWO
        %TWO(1,2
        DB    %LEN(abc
        DB    %EQS(abc)
        DB    %EVAL(1+2
        DB    %LEN abc
        %IF (1) THEN
        FI
        %FOO
        %DEEP
        %TAIL
        %TAIL
        $INCLUDE(open.inc)
        NOP
        END
