// The message catalogue: one row per number, 0 to 109.
#include "core/diagnostics.h"

namespace ta51 {

namespace {

constexpr bool F = true;
constexpr bool N = true;
constexpr bool _ = false;

constexpr CatalogueRow kCatalogue[] = {
    {0, "Segment usage exceeds allocation", _, _},
    {1, "", _, _},
    {2, "An absolute segment starting at this address already exists", _, _},
    {3, "Type mismatch", _, _},
    {4, "No such variable", _, _},
    {5, "Missing )", _, _},
    {6, "Overflow", _, _},
    {7, "Bad number", _, _},
    {8, "Expression evaluates to value greater than 8 bits", _, _},
    {9, "Expression evaluates to value greater than 16 bits", _, _},
    {10, "Expression must evaluate to a value between 0 and 3", _, _},
    {11, "Syntax error", _, _},
    {12, "Name too big", _, _},
    {13, "Duplicate label", _, _},
    {14, "Input file error", F, N},
    {15, "End of operand field expected", _, _},
    {16, "No operand", _, _},
    {17, "Phase error", F, _},
    {18, "Byte space error", F, _},
    {19, "Index error", _, _},
    {20, "Missing comma", _, _},
    {21, "Unexpected comma", _, _},
    {22, "Internal assembler error\nContact Tavelin technical support", F, _},
    {23, "Bad arguments", F, N},
    {24, "Not enough memory", F, N},
    {25, "Output file error", F, N},
    {26, "Bad opcode", _, _},
    {27, "No label in label field", _, _},
    {28, "Out of range", _, _},
    {29, "Byte", _, _},
    {30, "Sequence number error", _, _},
    {31, "Input file error", F, N},
    {32, "Intermediate file error", F, N},
    {33, "No such label", _, _},
    {34, "End of file, expecting ENDC", F, N},
    {35, "Missing ENDC", F, N},
    {36, "Unexpected #endif", _, _},
    {37, "Unexpected #elif", _, _},
    {38, "Unexpected #else", _, _},
    {39, "Missing $ENDIF", F, N},
    {40, "Unexpected ENDIF", _, _},
    {41, "Unexpected ELSEIF", _, _},
    {42, "End of file, expecting $ENDIF", F, N},
    {43, "End of file, expecting ENDM", F, N},
    {44, "Nesting of macros not allowed", _, N},
    {45, "NAME already set", _, _},
    {46, "Bad string", _, _},
    {47, "Unexpected ENDM", _, _},
    {48, "Unexpected ENDC", _, _},
    {49, "Nested macro definition not allowed", _, _},
    {50, "No more assembler generated labels available", _, _},
    {51, "Unexpected END", _, _},
    {52, "Invalid option", _, _},
    {53, "Reserved name. Not available for macro label", _, _},
    {54, "Reserved name. Not available for label", _, _},
    {55, "Cannot decrease program counter", _, _},
    {56, "Label not allowed", _, _},
    {57, "Directive not allowed in macro", _, _},
    {58, "Missing (", _, _},
    {59, "Not allowed with selected processor", _, _},
    {60, "'#' expected", _, _},
    {61, "'ROR' expected", _, _},
    {62, "Only ROR #0, ROR #8, ROR #16 or ROR #24 allowed", _, _},
    {63, nullptr, _, _},
    {64, "Divide by zero", _, _},
    {65, "Bad register", _, _},
    {66, "Bad port", _, _},
    {67, "Missing delimiter", _, _},
    {68, "Option only allowed in command line", _, _},
    {69, "Fail directive encountered", _, _},
    {70, "END directive ignored", _, _},
    {71, "NAM directive ignored", _, _},
    {72, "Invalid symbol type", _, _},
    {73, ": **** ERROR Public symbol undefined : ", _, N},
    {74, "External symbols not allowed in expression", _, _},
    {75, "A expected", _, _},
    {76, "Register expected", _, _},
    {77, "Invalid direct address", _, _},
    {78, "Bit address expected", _, _},
    {79, "@ expected", _, _},
    {80, "+ expected", _, _},
    {81, "DPTR expected", _, _},
    {82, "PC expected", _, _},
    {83, "Address not within 2K byte block", _, _},
    {84, "Data address expected", _, _},
    {85, "Segment type expected", _, _},
    {86, "Code address expected", _, _},
    {87, "Too many characters", _, _},
    {88, "Directive not valid in current segment type", _, _},
    {89, "Specified alignment not allowed with this segment type", _, _},
    {90, "Segment name expected", _, _},
    {91, "Segment type expected", _, _},
    {92, "Assembler code not allowed in current segment type", _, _},
    {93, "Program counter not initialised", _, _},
    {94, "Expression not simple relocatable", _, _},
    {95, "Invalid segment reference in relocatable expression", _, _},
    {96, "Segment symbol not allowed in this expression", _, _},
    {97, "Redefinition of absolute segment", _, _},
    {98, "Page width too small to accomodate fields", _, _},
    {99, "Instruction not supported by selected target chip", _, _},
    {100, "Missing closing \"", _, _},
    {101, "Missing closing >", _, _},
    {102, nullptr, _, _},
    {103, "Unexpected ELSE/ELSEC", _, _},
    {104, "Unsupported option/directive", F, _},
    {105, "Expected comma followed by bank number", _, _},
    {106, "Expected comma followed by PID number", _, _},
    {107, "Expected PORT, SFR or XDATA", _, _},
    {108, "Expected comma followed by bank switching attributes", _, _},
    {109, "Invalid source format, lines must be terminated with 0X0A", F, N},
};

static_assert(sizeof kCatalogue / sizeof kCatalogue[0] == 110, "the catalogue has numbers 0 to 109");

constexpr bool NumbersInOrder() {
  for (int i = 0; i < 110; ++i)
    if (kCatalogue[i].number != i) return false;
  return true;
}
static_assert(NumbersInOrder(), "row i holds number i");

constexpr CatalogueRow kNoRow = {-1, nullptr, false, false};

}  // namespace

const CatalogueRow& CatalogueEntry(int number) {
  if (number < 0 || number >= 110) return kNoRow;
  return kCatalogue[number];
}

}  // namespace ta51
