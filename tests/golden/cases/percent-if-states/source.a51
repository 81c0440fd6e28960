; The %IF filter in its four states, nesting in false sections, and the
; words FI and ELSE wherever they stand on a line.
%*DEFINE (SEL(A,B)) LOCAL ELSEWHERE (
%IF (%A) THEN
        DB    1
  %if (%B) then
        DB    2
  else
        DB    3
  fi
%ELSEWHERE: DB 4        ; FIRST is not the word
ELSE
        DB    5
  %IF (%B)
        DB    6
  ELSE
        DB    7
  FI
FI
        DB    8
)
%*DEFINE (INNER) (
        DB    9
)
%*DEFINE (OUTER(A)) (
%IF (%A) THEN
        %INNER
        DB    0AH
ELSE
        DB    0BH       ; this comment closes it: FI
        DB    0CH
)
%*DEFINE (CMP(S)) (
%IF (%EQS(%S,XY)) THEN
        DB    0DH
ELSE
        DB    0EH
FI
)
%*DEFINE (IFS(V)) (
        IFEQ  %V
        DB    0F0H
        ELSE
        DB    0F1H
        ENDC
)
        CSEG  AT 0
        %SEL(1,1)
        %SEL(1,0)
        %SEL(0,1)
        %SEL(0,0)
        %OUTER(1)
        %OUTER(0)
        %CMP(XY)
        %CMP(XZ)
        %IFS(0)
        %IFS(1)
        END
