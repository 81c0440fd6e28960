; Nested percent calls, a call on the last line of a body, a MACRO call and
; an INCLUDE inside an expansion, a percent call inside a MACRO body, and
; the forms of an argument list.
%*DEFINE (INNER(X)) LOCAL HERE (
%HERE:  DB    %X+10H
)
%*DEFINE (OUTER(A,B)) (
        DB    %A
        %INNER(%B)
        TWICE %A
        $INCLUDE(part.inc)
        %INNER(%A))
TWICE:  MACRO
        DB    \0
        %INNER(\0)
        ENDM
%*DEFINE (ARGS(P,Q,R)) (
        DB    1%P, 2%Q, 3%R)
%*DEFINE (ONE(V)) (DB 4%V)
%*DEFINE (HEX(A)) (DB 0%AH)
%*DEFINE (IND(A,B)) (DB %A)
        CSEG  AT 0
START:  %OUTER(1,2)
        %ARGS(1,,3)
        %ARGS(1, 2 ,3)
        %ONE()
        %ONE(5,6)
        %HEX(1F)
        %IND(%B,7)
        SJMP  START
        END
