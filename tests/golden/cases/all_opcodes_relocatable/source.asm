; Every opcode of all_opcodes, in a relocatable code segment, with its
; operands made relocatable: data addresses and immediates from the
; relocatable data segment VARS, code addresses and the targets of the
; relative branches written $ from the code segment FAR.
VARS      SEGMENT DATA
FAR       SEGMENT CODE
PROG      SEGMENT CODE
          RSEG VARS
V:
          RSEG FAR
FARL:     NOP
          RSEG PROG
START:    NOP                   ; absolute: 00
          AJMP FARL+20H         ; absolute: 01 20
          LJMP FARL+1234H       ; absolute: 02 12 34
          RR A                  ; absolute: 03
          INC A                 ; absolute: 04
          INC V+30H             ; absolute: 05 30
          INC @R0               ; absolute: 06
          INC @R1               ; absolute: 07
          INC R0                ; absolute: 08
          INC R1                ; absolute: 09
          INC R2                ; absolute: 0A
          INC R3                ; absolute: 0B
          INC R4                ; absolute: 0C
          INC R5                ; absolute: 0D
          INC R6                ; absolute: 0E
          INC R7                ; absolute: 0F
          JBC V+20H.0,FARL      ; absolute: 10 00 FD
          ACALL FARL+21H        ; absolute: 11 21
          LCALL FARL+0ABCDH     ; absolute: 12 AB CD
          RRC A                 ; absolute: 13
          DEC A                 ; absolute: 14
          DEC V+31H             ; absolute: 15 31
          DEC @R0               ; absolute: 16
          DEC @R1               ; absolute: 17
          DEC R0                ; absolute: 18
          DEC R1                ; absolute: 19
          DEC R2                ; absolute: 1A
          DEC R3                ; absolute: 1B
          DEC R4                ; absolute: 1C
          DEC R5                ; absolute: 1D
          DEC R6                ; absolute: 1E
          DEC R7                ; absolute: 1F
          JB V+21H.1,START      ; absolute: 20 09 D3
          AJMP FARL+122H        ; absolute: 21 22
          RET                   ; absolute: 22
          RL A                  ; absolute: 23
          ADD A,#V+22H          ; absolute: 24 22
          ADD A,V+32H           ; absolute: 25 32
          ADD A,@R0             ; absolute: 26
          ADD A,@R1             ; absolute: 27
          ADD A,R0              ; absolute: 28
          ADD A,R1              ; absolute: 29
          ADD A,R2              ; absolute: 2A
          ADD A,R3              ; absolute: 2B
          ADD A,R4              ; absolute: 2C
          ADD A,R5              ; absolute: 2D
          ADD A,R6              ; absolute: 2E
          ADD A,R7              ; absolute: 2F
          JNB V+22H.2,AHEAD0    ; absolute: 30 12 02
          ACALL FARL+123H       ; absolute: 31 23
AHEAD0:   RETI                  ; absolute: 32
          RLC A                 ; absolute: 33
          ADDC A,#V+33H         ; absolute: 34 33
          ADDC A,V+33H          ; absolute: 35 33
          ADDC A,@R0            ; absolute: 36
          ADDC A,@R1            ; absolute: 37
          ADDC A,R0             ; absolute: 38
          ADDC A,R1             ; absolute: 39
          ADDC A,R2             ; absolute: 3A
          ADDC A,R3             ; absolute: 3B
          ADDC A,R4             ; absolute: 3C
          ADDC A,R5             ; absolute: 3D
          ADDC A,R6             ; absolute: 3E
          ADDC A,R7             ; absolute: 3F
          JC AHEAD1             ; absolute: 40 02
          AJMP FARL+224H        ; absolute: 41 24
AHEAD1:   ORL V+34H,A           ; absolute: 42 34
          ORL V+35H,#V+43H      ; absolute: 43 35 43
          ORL A,#V+44H          ; absolute: 44 44
          ORL A,V+36H           ; absolute: 45 36
          ORL A,@R0             ; absolute: 46
          ORL A,@R1             ; absolute: 47
          ORL A,R0              ; absolute: 48
          ORL A,R1              ; absolute: 49
          ORL A,R2              ; absolute: 4A
          ORL A,R3              ; absolute: 4B
          ORL A,R4              ; absolute: 4C
          ORL A,R5              ; absolute: 4D
          ORL A,R6              ; absolute: 4E
          ORL A,R7              ; absolute: 4F
          JNC $                 ; absolute: 50 FE
          ACALL FARL+225H       ; absolute: 51 25
          ANL V+37H,A           ; absolute: 52 37
          ANL V+38H,#V+53H      ; absolute: 53 38 53
          ANL A,#V+55H          ; absolute: 54 55
          ANL A,V+39H           ; absolute: 55 39
          ANL A,@R0             ; absolute: 56
          ANL A,@R1             ; absolute: 57
          ANL A,R0              ; absolute: 58
          ANL A,R1              ; absolute: 59
          ANL A,R2              ; absolute: 5A
          ANL A,R3              ; absolute: 5B
          ANL A,R4              ; absolute: 5C
          ANL A,R5              ; absolute: 5D
BEHIND0:  ANL A,R6              ; absolute: 5E
          ANL A,R7              ; absolute: 5F
          JZ BEHIND0            ; absolute: 60 FC
          AJMP FARL+326H        ; absolute: 61 26
          XRL V+3AH,A           ; absolute: 62 3A
          XRL V+3BH,#V+63H      ; absolute: 63 3B 63
          XRL A,#V+66H          ; absolute: 64 66
          XRL A,V+3CH           ; absolute: 65 3C
          XRL A,@R0             ; absolute: 66
          XRL A,@R1             ; absolute: 67
          XRL A,R0              ; absolute: 68
          XRL A,R1              ; absolute: 69
          XRL A,R2              ; absolute: 6A
          XRL A,R3              ; absolute: 6B
          XRL A,R4              ; absolute: 6C
          XRL A,R5              ; absolute: 6D
          XRL A,R6              ; absolute: 6E
          XRL A,R7              ; absolute: 6F
          JNZ $                 ; absolute: 70 FE
          ACALL FARL+327H       ; absolute: 71 27
          ORL C,V+23H.3         ; absolute: 72 1B
          JMP @A+DPTR           ; absolute: 73
          MOV A,#V+74H          ; absolute: 74 74
          MOV V+3DH,#V+0FFH     ; absolute: 75 3D FF
          MOV @R0,#0            ; absolute: 76 00
          MOV @R1,#1            ; absolute: 77 01
          MOV R0,#V+80H         ; absolute: 78 80
          MOV R1,#V+81H         ; absolute: 79 81
          MOV R2,#V+82H         ; absolute: 7A 82
          MOV R3,#V+83H         ; absolute: 7B 83
          MOV R4,#V+84H         ; absolute: 7C 84
          MOV R5,#V+85H         ; absolute: 7D 85
BEHIND1:  MOV R6,#V+86H         ; absolute: 7E 86
          MOV R7,#V+87H         ; absolute: 7F 87
          SJMP BEHIND1          ; absolute: 80 FA
          AJMP FARL+428H        ; absolute: 81 28
          ANL C,V+24H.4         ; absolute: 82 24
          MOVC A,@A+PC          ; absolute: 83
          DIV AB                ; absolute: 84
          MOV V+3FH,V+3EH       ; absolute: 85 3E 3F
          MOV V+40H,@R0         ; absolute: 86 40
          MOV V+41H,@R1         ; absolute: 87 41
          MOV V+42H,R0          ; absolute: 88 42
          MOV V+43H,R1          ; absolute: 89 43
          MOV V+44H,R2          ; absolute: 8A 44
          MOV V+45H,R3          ; absolute: 8B 45
          MOV V+46H,R4          ; absolute: 8C 46
          MOV V+47H,R5          ; absolute: 8D 47
          MOV V+48H,R6          ; absolute: 8E 48
          MOV V+49H,R7          ; absolute: 8F 49
          MOV DPTR,#V+0BEEFH    ; absolute: 90 BE EF
          ACALL FARL+429H       ; absolute: 91 29
          MOV V+25H.5,C         ; absolute: 92 2D
          MOVC A,@A+DPTR        ; absolute: 93
          SUBB A,#V+99H         ; absolute: 94 99
          SUBB A,V+4AH          ; absolute: 95 4A
          SUBB A,@R0            ; absolute: 96
          SUBB A,@R1            ; absolute: 97
          SUBB A,R0             ; absolute: 98
          SUBB A,R1             ; absolute: 99
          SUBB A,R2             ; absolute: 9A
          SUBB A,R3             ; absolute: 9B
          SUBB A,R4             ; absolute: 9C
          SUBB A,R5             ; absolute: 9D
          SUBB A,R6             ; absolute: 9E
          SUBB A,R7             ; absolute: 9F
          ORL C,/V+26H.6        ; absolute: A0 36
          AJMP FARL+52AH        ; absolute: A1 2A
          MOV C,V+27H.7         ; absolute: A2 3F
          INC DPTR              ; absolute: A3
          MUL AB                ; absolute: A4
          MOV @R0,V+4BH         ; absolute: A6 4B
          MOV @R1,V+4CH         ; absolute: A7 4C
          MOV R0,V+4DH          ; absolute: A8 4D
          MOV R1,V+4EH          ; absolute: A9 4E
          MOV R2,V+4FH          ; absolute: AA 4F
          MOV R3,V+50H          ; absolute: AB 50
          MOV R4,V+51H          ; absolute: AC 51
          MOV R5,V+52H          ; absolute: AD 52
          MOV R6,V+53H          ; absolute: AE 53
          MOV R7,V+54H          ; absolute: AF 54
          ANL C,/V+28H.0        ; absolute: B0 40
          ACALL FARL+52BH       ; absolute: B1 2B
          CPL V+29H.1           ; absolute: B2 49
          CPL C                 ; absolute: B3
          CJNE A,#V+5AH,FARL    ; absolute: B4 5A FD
          CJNE A,V+55H,FARL     ; absolute: B5 55 FD
          CJNE @R0,#1,FARL      ; absolute: B6 01 FD
          CJNE @R1,#2,FARL      ; absolute: B7 02 FD
          CJNE R0,#V+0F0H,FARL  ; absolute: B8 F0 FD
          CJNE R1,#V+0F1H,FARL  ; absolute: B9 F1 FD
          CJNE R2,#V+0F2H,FARL  ; absolute: BA F2 FD
          CJNE R3,#V+0F3H,AHEAD2; absolute: BB F3 03
          CJNE R4,#V+0F4H,FARL  ; absolute: BC F4 FD
AHEAD2:   CJNE R5,#V+0F5H,FARL  ; absolute: BD F5 FD
          CJNE R6,#V+0F6H,FARL  ; absolute: BE F6 FD
          CJNE R7,#V+0F7H,FARL  ; absolute: BF F7 FD
          PUSH V+56H            ; absolute: C0 56
          AJMP FARL+62CH        ; absolute: C1 2C
          CLR V+2AH.2           ; absolute: C2 52
          CLR C                 ; absolute: C3
          SWAP A                ; absolute: C4
          XCH A,V+57H           ; absolute: C5 57
          XCH A,@R0             ; absolute: C6
          XCH A,@R1             ; absolute: C7
          XCH A,R0              ; absolute: C8
          XCH A,R1              ; absolute: C9
          XCH A,R2              ; absolute: CA
          XCH A,R3              ; absolute: CB
          XCH A,R4              ; absolute: CC
          XCH A,R5              ; absolute: CD
          XCH A,R6              ; absolute: CE
          XCH A,R7              ; absolute: CF
          POP V+58H             ; absolute: D0 58
          ACALL FARL+62DH       ; absolute: D1 2D
          SETB V+2BH.3          ; absolute: D2 5B
BEHIND2:  SETB C                ; absolute: D3
          DA A                  ; absolute: D4
          DJNZ V+59H,BEHIND2    ; absolute: D5 59 FB
          XCHD A,@R0            ; absolute: D6
BEHIND3:  XCHD A,@R1            ; absolute: D7
          DJNZ R0,FARL          ; absolute: D8 FE
BEHIND4:  DJNZ R1,BEHIND3       ; absolute: D9 FB
          DJNZ R2,FARL          ; absolute: DA FE
BEHIND5:  DJNZ R3,BEHIND4       ; absolute: DB FA
          DJNZ R4,FARL          ; absolute: DC FE
BEHIND6:  DJNZ R5,BEHIND5       ; absolute: DD FA
          DJNZ R6,FARL          ; absolute: DE FE
          DJNZ R7,BEHIND6       ; absolute: DF FA
          MOVX A,@DPTR          ; absolute: E0
          AJMP FARL+72EH        ; absolute: E1 2E
          MOVX A,@R0            ; absolute: E2
          MOVX A,@R1            ; absolute: E3
          CLR A                 ; absolute: E4
          MOV A,V+5AH           ; absolute: E5 5A
          MOV A,@R0             ; absolute: E6
          MOV A,@R1             ; absolute: E7
          MOV A,R0              ; absolute: E8
          MOV A,R1              ; absolute: E9
          MOV A,R2              ; absolute: EA
          MOV A,R3              ; absolute: EB
          MOV A,R4              ; absolute: EC
          MOV A,R5              ; absolute: ED
          MOV A,R6              ; absolute: EE
          MOV A,R7              ; absolute: EF
          MOVX @DPTR,A          ; absolute: F0
          ACALL FARL+72FH       ; absolute: F1 2F
          MOVX @R0,A            ; absolute: F2
          MOVX @R1,A            ; absolute: F3
          CPL A                 ; absolute: F4
          MOV V+5BH,A           ; absolute: F5 5B
          MOV @R0,A             ; absolute: F6
          MOV @R1,A             ; absolute: F7
          MOV R0,A              ; absolute: F8
          MOV R1,A              ; absolute: F9
          MOV R2,A              ; absolute: FA
          MOV R3,A              ; absolute: FB
          MOV R4,A              ; absolute: FC
          MOV R5,A              ; absolute: FD
          MOV R6,A              ; absolute: FE
          MOV R7,A              ; absolute: FF
