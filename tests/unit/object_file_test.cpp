// Object records: the module head, segments, symbols and load records.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "directives/segments.h"
#include "core/assembler.h"
#include "output/object_file.h"
#include "symbols/symbols.h"

namespace ta51 {
namespace {

class ObjectFileTest : public ::testing::Test {
 protected:
  ObjectFileTest() : as(Console{std::tmpfile(), std::tmpfile(), nullptr}) {
    as.ListStream = std::tmpfile();
    as.ObjectStream = std::tmpfile();
    as.opt.OBJ.bits = 1;
    as.opt.PredefinedSymbolsEnabled.bits = 1;
    as.SecondPass = 1;
    as.Line.text = "line\n";
    as.CurrentFileName = "C:\\W\\DEMO.A51";
  }
  ~ObjectFileTest() override {
    for (FILE* file : {as.console.out, as.console.err, as.ObjectStream}) std::fclose(file);
    as.ObjectStream = nullptr;
  }

  std::string Records() {
    std::fflush(as.ObjectStream);
    long size = std::ftell(as.ObjectStream);
    std::string text(static_cast<size_t>(size), '\0');
    std::rewind(as.ObjectStream);
    text.resize(std::fread(text.data(), 1, text.size(), as.ObjectStream));
    std::rewind(as.ObjectStream);
    return text;
  }

  SegmentEntry& Relocatable(const char* name, int32_t type, int32_t kind = kKindUnit) {
    SegmentEntry* segment = NewSegment(as, type);
    segment->type = type;
    segment->kind = kind;
    segment->name = name;
    return *segment;
  }

  SymbolEntry& Symbol(const char* name, int32_t type, int32_t value, int32_t relocation,
                      SegmentEntry* segment = nullptr) {
    SymbolDefinition definition;
    definition.type = type;
    definition.value = value;
    definition.relocation = relocation;
    definition.segment = segment;
    DefineSymbol(as, name, definition);
    return *as.FoundSymbol;
  }

  Assembler as;
};

TEST_F(ObjectFileTest, HeadSegmentsAndSymbolsOfAModule) {
  SegmentEntry& prog = Relocatable("PROG", T_CODE);
  prog.location = 6;
  Symbol("ENTRY", T_CODE, 1, REL_XREF).flags |= kSymUsedExternal;
  Symbol("UNUSED", T_CODE, 2, REL_XREF);
  Symbol("__cstart", T_CODE, 3, REL_XREF);
  Symbol("START", T_CODE, 0, REL_XDEF, &prog);
  Symbol("LOCAL", T_CODE, 4, REL_NULL, &prog);
  as.ModuleName = "C:\\W\\demo";
  WriteModuleHead(as);
  WriteSegmentRecords(as);
  EXPECT_EQ(Records(),
            "MB8051,0B\"C:\\W\\DEMO\".\r\nAD8,2,L.\r\nST0,C,04PROG.\r\nASS0,6.\r\nNX1,05ENTRY.\r\n"
            "NI0,05START.\r\nASI0,R0+0.\r\nNX3,08__cstart.\r\n");
}

TEST_F(ObjectFileTest, SegmentRecordVariants) {
  SegmentEntry& paged = Relocatable("PG", T_CODE, kKindPage);
  SegmentEntry& overlay = Relocatable("OV", T_DATA, kKindOverlayable);
  overlay.attribute = kAttrCommon;
  Relocatable("BA", T_DATA, kKindBitaddressable).location = 2;
  SegmentEntry& empty = *NewSegment(as, T_CODE);
  empty.type = T_CODE;
  empty.kind = kKindAbsolute;
  empty.startAddress = empty.location = 0x100;
  SegmentEntry& used = *NewSegment(as, T_CODE);
  used.type = T_CODE;
  used.kind = kKindAbsolute;
  used.startAddress = 0x10;
  used.location = 0x14;
  used.reserved = 2;
  paged.CallTargetList.push_back("R0");
  as.RegisterBankUsed[1] = true;
  WriteSegmentRecords(as);
  EXPECT_EQ(Records(),
            "ST0,C,02PG.\r\nSA0,100.\r\nASS0,0.\r\nST1,D,Z,O,M,02OV.\r\nASS1,0.\r\nST2,D,Z,02BA.\r\nSA2,20,10.\r\n"
            "ASS2,2.\r\nST4,C,A.\r\nASS4,4.\r\nASL4,10.\r\nASQ4,2.\r\nST5,D,Z,A,M,0FRegister bank 1.\r\n"
            "ASS5,8.\r\nASL5,8.\r\nCL0,R0.\r\n");
}

TEST_F(ObjectFileTest, PredefinedSegmentsOwnLaterSegments) {
  CreatePredefinedSegments(as);
  Relocatable("XS", T_XDATA).location = 1;
  WriteSegmentRecords(as);
  EXPECT_EQ(Records(),
            "ST1,D,Z,K,05BDATA.\r\nASS1,0.\r\nST2,X,K,05XDATA.\r\nASS2,0.\r\nST3,I,Z,K,05IDATA.\r\nASS3,0.\r\n"
            "ST4,D,Z,K,04DATA.\r\nASS4,0.\r\nST5,B,Z,K,03BIT.\r\nASS5,0.\r\nST6,X,02XS,2.\r\nASS6,1.\r\n");
}

TEST_F(ObjectFileTest, UndefinedPublicSymbolsAreErrors) {
  Symbol("ONLYPUB", T_DECLARED, 0, REL_XDEF);
  Symbol("BOTH", T_CODE, 1, REL_XDREF);
  as.LineNumber = 9;
  WriteSymbolRecords(as);
  EXPECT_EQ(as.ErrorCount, 2);
  EXPECT_EQ(Records(), "");
  std::fflush(as.console.out);
  std::rewind(as.console.out);
  char text[512] = {0};
  std::fread(text, 1, sizeof text - 1, as.console.out);
  EXPECT_EQ(std::string(text),
            "\nC:\\W\\DEMO.A51(9): Error: : **** ERROR Public symbol undefined : BOTH\n\n"
            "C:\\W\\DEMO.A51: Error: : **** ERROR Public symbol undefined : ONLYPUB\n");
}

TEST_F(ObjectFileTest, LoadRecordArrangements) {
  as.LineNumber = 6;
  auto emit = [&](std::initializer_list<uint8_t> bytes) {
    as.CodeLength = static_cast<int32_t>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), as.CodeBuffer);
    EmitInstruction(as);
    as.OperandSlot1 = OperandSlot{};
    as.OperandSlot2 = OperandSlot{};
  };
  emit({0x74, 0x01});
  as.OperandSlot1 = OperandSlot{"X1", 2, 1, 2};
  emit({0x12, 0, 0});
  as.OperandSlot2 = OperandSlot{"R2", 1, 1, 2};
  emit({0x75, 0, 0x33});
  as.OperandSlot1 = OperandSlot{"R1", 1, 1, 2};
  as.OperandSlot2 = OperandSlot{"R2", 1, 2, 2};
  emit({0x85, 0, 0});
  as.OperandSlot1 = OperandSlot{"T", 2, kWholeInstructionFixup, 2};
  emit({0x11, 0});
  as.OperandSlot1 = OperandSlot{"", 1, 1, 2};  // a slot with no text goes out as bytes
  emit({0xE5, 0x30});
  as.CurrentFileName = "/src/zvtmp1.asm";
  as.OperandSlot1 = OperandSlot{"R3", 1, 1, 2};
  emit({0xE5, 0});
  EXPECT_EQ(Records(),
            "LR7401.\r\nLR12(X1,2,I,0010C:\\W\\DEMO*A51(6)).\r\nLR75(R2,1,I,0010C:\\W\\DEMO*A51(6))33.\r\n"
            "LR85(R1,1,I,0010C:\\W\\DEMO*A51(6))(R2,1,I,0010C:\\W\\DEMO*A51(6)).\r\n"
            "LR(T,2,I,0010C:\\W\\DEMO*A51(6)).\r\nLRE530.\r\nLRE5(R3,1,I).\r\n");
  EXPECT_EQ(as.TotalBytes, 17u);
}

TEST_F(ObjectFileTest, FieldsThatDoNotFillTheInstructionStopTheRun) {
  as.CodeLength = 3;
  as.OperandSlot1 = OperandSlot{"A", 1, 1, 2};
  as.OperandSlot2 = OperandSlot{"B", 2, 2, 2};
  EXPECT_THROW(EmitInstruction(as), RunTerminated);
  EXPECT_EQ(as.ErrorCount, 1);
}

}  // namespace
}  // namespace ta51
