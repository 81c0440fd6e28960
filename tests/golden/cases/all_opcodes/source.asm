START:    NOP                   ; 00
          AJMP 20H              ; 01 20
          LJMP 1234H            ; 02 12 34
          RR A                  ; 03
          INC A                 ; 04
          INC 30H               ; 05 30
          INC @R0               ; 06
          INC @R1               ; 07
          INC R0                ; 08
          INC R1                ; 09
          INC R2                ; 0A
          INC R3                ; 0B
          INC R4                ; 0C
          INC R5                ; 0D
          INC R6                ; 0E
          INC R7                ; 0F
          JBC 20H.0,$           ; 10 00 FD
          ACALL 21H             ; 11 21
          LCALL 0ABCDH          ; 12 AB CD
          RRC A                 ; 13
          DEC A                 ; 14
          DEC 31H               ; 15 31
          DEC @R0               ; 16
          DEC @R1               ; 17
          DEC R0                ; 18
          DEC R1                ; 19
          DEC R2                ; 1A
          DEC R3                ; 1B
          DEC R4                ; 1C
          DEC R5                ; 1D
          DEC R6                ; 1E
          DEC R7                ; 1F
          JB 21H.1,START        ; 20 09 D3
          AJMP 122H             ; 21 22
          RET                   ; 22
          RL A                  ; 23
          ADD A,#22H            ; 24 22
          ADD A,32H             ; 25 32
          ADD A,@R0             ; 26
          ADD A,@R1             ; 27
          ADD A,R0              ; 28
          ADD A,R1              ; 29
          ADD A,R2              ; 2A
          ADD A,R3              ; 2B
          ADD A,R4              ; 2C
          ADD A,R5              ; 2D
          ADD A,R6              ; 2E
          ADD A,R7              ; 2F
          JNB 22H.2,AHEAD0      ; 30 12 02
          ACALL 123H            ; 31 23
AHEAD0:   RETI                  ; 32
          RLC A                 ; 33
          ADDC A,#33H           ; 34 33
          ADDC A,33H            ; 35 33
          ADDC A,@R0            ; 36
          ADDC A,@R1            ; 37
          ADDC A,R0             ; 38
          ADDC A,R1             ; 39
          ADDC A,R2             ; 3A
          ADDC A,R3             ; 3B
          ADDC A,R4             ; 3C
          ADDC A,R5             ; 3D
          ADDC A,R6             ; 3E
          ADDC A,R7             ; 3F
          JC AHEAD1             ; 40 02
          AJMP 224H             ; 41 24
AHEAD1:   ORL 34H,A             ; 42 34
          ORL 35H,#43H          ; 43 35 43
          ORL A,#44H            ; 44 44
          ORL A,36H             ; 45 36
          ORL A,@R0             ; 46
          ORL A,@R1             ; 47
          ORL A,R0              ; 48
          ORL A,R1              ; 49
          ORL A,R2              ; 4A
          ORL A,R3              ; 4B
          ORL A,R4              ; 4C
          ORL A,R5              ; 4D
          ORL A,R6              ; 4E
          ORL A,R7              ; 4F
          JNC $                 ; 50 FE
          ACALL 225H            ; 51 25
          ANL 37H,A             ; 52 37
          ANL 38H,#53H          ; 53 38 53
          ANL A,#55H            ; 54 55
          ANL A,39H             ; 55 39
          ANL A,@R0             ; 56
          ANL A,@R1             ; 57
          ANL A,R0              ; 58
          ANL A,R1              ; 59
          ANL A,R2              ; 5A
          ANL A,R3              ; 5B
          ANL A,R4              ; 5C
          ANL A,R5              ; 5D
BEHIND0:  ANL A,R6              ; 5E
          ANL A,R7              ; 5F
          JZ BEHIND0            ; 60 FC
          AJMP 326H             ; 61 26
          XRL 3AH,A             ; 62 3A
          XRL 3BH,#63H          ; 63 3B 63
          XRL A,#66H            ; 64 66
          XRL A,3CH             ; 65 3C
          XRL A,@R0             ; 66
          XRL A,@R1             ; 67
          XRL A,R0              ; 68
          XRL A,R1              ; 69
          XRL A,R2              ; 6A
          XRL A,R3              ; 6B
          XRL A,R4              ; 6C
          XRL A,R5              ; 6D
          XRL A,R6              ; 6E
          XRL A,R7              ; 6F
          JNZ $                 ; 70 FE
          ACALL 327H            ; 71 27
          ORL C,23H.3           ; 72 1B
          JMP @A+DPTR           ; 73
          MOV A,#74H            ; 74 74
          MOV 3DH,#0FFH         ; 75 3D FF
          MOV @R0,#0            ; 76 00
          MOV @R1,#1            ; 77 01
          MOV R0,#80H           ; 78 80
          MOV R1,#81H           ; 79 81
          MOV R2,#82H           ; 7A 82
          MOV R3,#83H           ; 7B 83
          MOV R4,#84H           ; 7C 84
          MOV R5,#85H           ; 7D 85
BEHIND1:  MOV R6,#86H           ; 7E 86
          MOV R7,#87H           ; 7F 87
          SJMP BEHIND1          ; 80 FA
          AJMP 428H             ; 81 28
          ANL C,24H.4           ; 82 24
          MOVC A,@A+PC          ; 83
          DIV AB                ; 84
          MOV 3FH,3EH           ; 85 3E 3F
          MOV 40H,@R0           ; 86 40
          MOV 41H,@R1           ; 87 41
          MOV 42H,R0            ; 88 42
          MOV 43H,R1            ; 89 43
          MOV 44H,R2            ; 8A 44
          MOV 45H,R3            ; 8B 45
          MOV 46H,R4            ; 8C 46
          MOV 47H,R5            ; 8D 47
          MOV 48H,R6            ; 8E 48
          MOV 49H,R7            ; 8F 49
          MOV DPTR,#0BEEFH      ; 90 BE EF
          ACALL 429H            ; 91 29
          MOV 25H.5,C           ; 92 2D
          MOVC A,@A+DPTR        ; 93
          SUBB A,#99H           ; 94 99
          SUBB A,4AH            ; 95 4A
          SUBB A,@R0            ; 96
          SUBB A,@R1            ; 97
          SUBB A,R0             ; 98
          SUBB A,R1             ; 99
          SUBB A,R2             ; 9A
          SUBB A,R3             ; 9B
          SUBB A,R4             ; 9C
          SUBB A,R5             ; 9D
          SUBB A,R6             ; 9E
          SUBB A,R7             ; 9F
          ORL C,/26H.6          ; A0 36
          AJMP 52AH             ; A1 2A
          MOV C,27H.7           ; A2 3F
          INC DPTR              ; A3
          MUL AB                ; A4
          MOV @R0,4BH           ; A6 4B
          MOV @R1,4CH           ; A7 4C
          MOV R0,4DH            ; A8 4D
          MOV R1,4EH            ; A9 4E
          MOV R2,4FH            ; AA 4F
          MOV R3,50H            ; AB 50
          MOV R4,51H            ; AC 51
          MOV R5,52H            ; AD 52
          MOV R6,53H            ; AE 53
          MOV R7,54H            ; AF 54
          ANL C,/28H.0          ; B0 40
          ACALL 52BH            ; B1 2B
          CPL 29H.1             ; B2 49
          CPL C                 ; B3
          CJNE A,#5AH,$         ; B4 5A FD
          CJNE A,55H,$          ; B5 55 FD
          CJNE @R0,#1,$         ; B6 01 FD
          CJNE @R1,#2,$         ; B7 02 FD
          CJNE R0,#0F0H,$       ; B8 F0 FD
          CJNE R1,#0F1H,$       ; B9 F1 FD
          CJNE R2,#0F2H,$       ; BA F2 FD
          CJNE R3,#0F3H,AHEAD2  ; BB F3 03
          CJNE R4,#0F4H,$       ; BC F4 FD
AHEAD2:   CJNE R5,#0F5H,$       ; BD F5 FD
          CJNE R6,#0F6H,$       ; BE F6 FD
          CJNE R7,#0F7H,$       ; BF F7 FD
          PUSH 56H              ; C0 56
          AJMP 62CH             ; C1 2C
          CLR 2AH.2             ; C2 52
          CLR C                 ; C3
          SWAP A                ; C4
          XCH A,57H             ; C5 57
          XCH A,@R0             ; C6
          XCH A,@R1             ; C7
          XCH A,R0              ; C8
          XCH A,R1              ; C9
          XCH A,R2              ; CA
          XCH A,R3              ; CB
          XCH A,R4              ; CC
          XCH A,R5              ; CD
          XCH A,R6              ; CE
          XCH A,R7              ; CF
          POP 58H               ; D0 58
          ACALL 62DH            ; D1 2D
          SETB 2BH.3            ; D2 5B
BEHIND2:  SETB C                ; D3
          DA A                  ; D4
          DJNZ 59H,BEHIND2      ; D5 59 FB
          XCHD A,@R0            ; D6
BEHIND3:  XCHD A,@R1            ; D7
          DJNZ R0,$             ; D8 FE
BEHIND4:  DJNZ R1,BEHIND3       ; D9 FB
          DJNZ R2,$             ; DA FE
BEHIND5:  DJNZ R3,BEHIND4       ; DB FA
          DJNZ R4,$             ; DC FE
BEHIND6:  DJNZ R5,BEHIND5       ; DD FA
          DJNZ R6,$             ; DE FE
          DJNZ R7,BEHIND6       ; DF FA
          MOVX A,@DPTR          ; E0
          AJMP 72EH             ; E1 2E
          MOVX A,@R0            ; E2
          MOVX A,@R1            ; E3
          CLR A                 ; E4
          MOV A,5AH             ; E5 5A
          MOV A,@R0             ; E6
          MOV A,@R1             ; E7
          MOV A,R0              ; E8
          MOV A,R1              ; E9
          MOV A,R2              ; EA
          MOV A,R3              ; EB
          MOV A,R4              ; EC
          MOV A,R5              ; ED
          MOV A,R6              ; EE
          MOV A,R7              ; EF
          MOVX @DPTR,A          ; F0
          ACALL 72FH            ; F1 2F
          MOVX @R0,A            ; F2
          MOVX @R1,A            ; F3
          CPL A                 ; F4
          MOV 5BH,A             ; F5 5B
          MOV @R0,A             ; F6
          MOV @R1,A             ; F7
          MOV R0,A              ; F8
          MOV R1,A              ; F9
          MOV R2,A              ; FA
          MOV R3,A              ; FB
          MOV R4,A              ; FC
          MOV R5,A              ; FD
          MOV R6,A              ; FE
          MOV R7,A              ; FF
