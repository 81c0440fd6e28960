#include "target/encoder.h"

namespace ta51 {

const Mnemonic kMnemonics[45] = {
    {"NOP", 0x00},   {"RET", 0x22},  {"RETI", 0x32}, {"RL", 0x23},    {"RLC", 0x33},  {"RR", 0x03},
    {"RRC", 0x13},   {"SWAP", 0xC4}, {"DA", 0xD4},   {"POP", 0xD0},   {"PUSH", 0xC0}, {"ACALL", 0x11},
    {"AJMP", 0x01},  {"XCHD", 0xD6}, {"XCH", 0xC0},  {"ADD", 0x20},   {"ADDC", 0x30}, {"SUBB", 0x90},
    {"XRL", 0x60},   {"ANL", 0x50},  {"ORL", 0x40},  {"CJNE", 0xB0},  {"SETB", 0xD0}, {"CLR", 0xC0},
    {"CPL", 0xB0},   {"DEC", 0x10},  {"INC", 0x00},  {"DIV", 0x84},   {"MUL", 0xA4},  {"DJNZ", 0xD0},
    {"JB", 0x20},    {"JBC", 0x10},  {"JNB", 0x30},  {"JC", 0x40},    {"JNC", 0x50},  {"JNZ", 0x70},
    {"JZ", 0x60},    {"SJMP", 0x80}, {"JMP", 0x73},  {"CALL", 0x11},  {"LCALL", 0x12}, {"LJMP", 0x02},
    {"MOVC", 0x93},  {"MOVX", 0xE0}, {"MOV", 0x00},
};

int EncodeInstruction(Assembler&, uint8_t, int) { return 1; }

}  // namespace ta51
