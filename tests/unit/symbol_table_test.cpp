// The symbol table: chain order, the rules of DefineSymbol, hiding and case.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "core/assembler.h"
#include "symbols/symbols.h"

namespace ta51 {
namespace {

class SymbolTableTest : public ::testing::Test {
 protected:
  SymbolTableTest() : as(Console{std::tmpfile(), std::tmpfile(), nullptr}) {
    as.ListStream = std::tmpfile();
    as.opt.PredefinedSymbolsEnabled.bits = 1;
    as.Line.text = "line\n";
  }
  ~SymbolTableTest() override {
    std::fclose(as.console.out);
    std::fclose(as.console.err);
  }

  // Defines `name`; the text of the error it reported, or "".
  std::string Define(const std::string& name, int32_t type, int32_t value = 0, bool settable = false,
                     int32_t relocation = REL_NULL) {
    int before = as.ErrorCount;
    FlushListBuffer(as);  // reports wait in the list buffer like listed lines
    long start = std::ftell(as.ListStream);
    as.LineHasError = false;
    SymbolDefinition definition;
    definition.type = type;
    definition.value = value;
    definition.settable = settable;
    definition.relocation = relocation;
    DefineSymbol(as, (name + "\n").c_str(), definition);
    if (as.ErrorCount == before) return "";
    FlushListBuffer(as);
    std::string listed(static_cast<size_t>(std::ftell(as.ListStream) - start), '\0');
    std::fseek(as.ListStream, start, SEEK_SET);
    size_t got = std::fread(listed.data(), 1, listed.size(), as.ListStream);
    listed.resize(got);
    size_t text = listed.find("Error: ");
    return listed.substr(text + 7, listed.find('\n', text) - text - 7);
  }
  SymbolEntry* Find(const std::string& name) { return FindSymbol(as, name); }
  // P1 as the predefined SFR name enters it: DATA 90H.
  void DefinePredefinedP1() {
    SymbolDefinition predefined;
    predefined.type = T_DATA;
    predefined.value = 0x90;
    predefined.predefined = true;
    predefined.checkReserved = false;
    DefineSymbol(as, "P1\n", predefined);
  }
  std::vector<std::string> Order() {
    std::vector<std::string> names;
    as.Symbols.ForEach([&](const SymbolEntry& entry) { names.emplace_back(entry.Name()); });
    return names;
  }

  Assembler as;
};

TEST_F(SymbolTableTest, WalkFollowsTheChainsAndNameOrder) {
  for (const char* name : {"zeta", "_u", "Alpha", ".dot", "?q", "B", "beta", "ALPHA", ".@local", "A_1"})
    EXPECT_EQ(Define(name, T_NUMBER), "") << name;
  std::vector<std::string> expected = {"ALPHA", "A_1", "Alpha", "B", "beta", "zeta", "?q", ".dot", "_u"};
  EXPECT_EQ(Order(), expected);
  EXPECT_EQ(as.Symbols.LongestName(), 8u);
}

TEST_F(SymbolTableTest, RedefinitionRules) {
  EXPECT_EQ(Define("FOO", T_CODE), "");
  EXPECT_EQ(Define("FOO", T_CODE), "Duplicate label");
  EXPECT_EQ(Define("X", T_NUMBER, 1, true), "");
  EXPECT_EQ(Define("X", T_NUMBER, 2, true), "");
  EXPECT_EQ(Find("X")->value, 2);
  EXPECT_EQ(Define("Y", T_NUMBER, 1), "");
  EXPECT_EQ(Define("Y", T_NUMBER, 2, true), "Duplicate label");  // EQU then SET
  EXPECT_EQ(Define("X", T_NUMBER, 3), "Duplicate label");  // SET then EQU
  EXPECT_EQ(Define("REG", T_REGSET, 3), "");
  EXPECT_EQ(Define("REG", T_REGSET, 4), "");  // a register SET again
  EXPECT_EQ(Find("REG")->value, 4);
  EXPECT_EQ(Define("REG", T_NUMBER, 5, true), "Duplicate label");  // then a number SET
}

TEST_F(SymbolTableTest, PublicAndExternalClasses) {
  EXPECT_EQ(Define("P", T_DECLARED, 0, false, REL_XDEF), "");
  EXPECT_EQ(Define("P", T_CODE, 16), "");
  EXPECT_EQ(Find("P")->type, T_CODE);
  EXPECT_EQ(Find("P")->relocation, REL_XDEF);
  EXPECT_EQ(Define("Q", T_DECLARED, 0, false, REL_XDEF), "");
  EXPECT_EQ(Define("Q", T_REGEQU, 3), "Invalid symbol type");  // and the definition stands
  EXPECT_EQ(Find("Q")->type, T_REGEQU);
  EXPECT_EQ(Define("E", T_CODE, 1, false, REL_XDREF), "");
  EXPECT_EQ(Define("E", T_CODE, 7), "");
  EXPECT_EQ(Find("E")->relocation, REL_XDEF);
  EXPECT_EQ(Find("E")->value, 7);
}

TEST_F(SymbolTableTest, ReservedNamesAndNameLength) {
  EXPECT_EQ(Define("R0", T_CODE), "");
  EXPECT_EQ(Define("r1", T_CODE), "Reserved name. Not available for label");
  EXPECT_EQ(Define("dptr", T_CODE), "Reserved name. Not available for label");
  EXPECT_EQ(Define("Shl", T_CODE), "Reserved name. Not available for label");
  EXPECT_EQ(Define(std::string(257, 'N'), T_CODE), "");
  EXPECT_EQ(Define(std::string(258, 'M'), T_CODE), "Name too big");
  EXPECT_EQ(Find(std::string(258, 'M')), nullptr);
}

TEST_F(SymbolTableTest, HiddenPredefinedNamesStayInTheirChain) {
  DefinePredefinedP1();
  EXPECT_EQ(Define("P1", T_CODE, 5), "Duplicate label");
  as.opt.PredefinedSymbolsEnabled.bits = 0;
  EXPECT_EQ(Find("P1"), nullptr);
  EXPECT_EQ(Define("P1", T_CODE, 5), "");
  EXPECT_EQ(Find("P1")->value, 5);
  as.opt.PredefinedSymbolsEnabled.bits = 1;
  EXPECT_EQ(Find("P1")->value, 0x90);
  EXPECT_EQ(Order(), (std::vector<std::string>{"P1", "P1"}));
}

// The index grows many times past its first size, beyond the size where it
// moves out of the shared arena into blocks of its own; a name entered twice
// must still be found in the order of entry, and every name at all.
TEST_F(SymbolTableTest, NamesAreFoundAfterTheIndexGrows) {
  DefinePredefinedP1();
  as.opt.PredefinedSymbolsEnabled.bits = 0;
  EXPECT_EQ(Define("P1", T_CODE, 5), "");
  constexpr int kNames = 120000;
  for (int index = 0; index < kNames; ++index) ASSERT_EQ(Define("N" + std::to_string(index), T_NUMBER, index), "");
  for (int index = 0; index < kNames; ++index) {
    SymbolEntry* entry = Find("N" + std::to_string(index));
    ASSERT_NE(entry, nullptr) << index;
    EXPECT_EQ(entry->value, index);
  }
  EXPECT_EQ(Find("P1")->value, 5);
  as.opt.PredefinedSymbolsEnabled.bits = 1;
  EXPECT_EQ(Find("P1")->value, 0x90);
  EXPECT_EQ(Find("N120000"), nullptr);
  // Emptied, the table starts again from its first size.
  as.Symbols.Clear();
  EXPECT_EQ(Find("N7"), nullptr);
  EXPECT_EQ(Define("N7", T_NUMBER, 70), "");
  EXPECT_EQ(Find("N7")->value, 70);
}

// Two entries of one name keep their order through every growth of the
// index, wherever their probe sequence lies, also across its end.
TEST_F(SymbolTableTest, EqualNamesKeepTheirOrderAsTheIndexGrows) {
  constexpr int kPairs = 3000;
  SymbolDefinition predefined;
  predefined.type = T_DATA;
  predefined.predefined = true;
  predefined.checkReserved = false;
  for (int index = 0; index < kPairs; ++index) {
    predefined.value = index;
    DefineSymbol(as, ("Q" + std::to_string(index) + "\n").c_str(), predefined);
    as.opt.PredefinedSymbolsEnabled.bits = 0;
    ASSERT_EQ(Define("Q" + std::to_string(index), T_CODE, index + kPairs), "");
    as.opt.PredefinedSymbolsEnabled.bits = 1;
  }
  for (int index = 0; index < kPairs; ++index) {
    const std::string name = "Q" + std::to_string(index);
    ASSERT_EQ(Find(name)->value, index) << name;
    as.opt.PredefinedSymbolsEnabled.bits = 0;
    ASSERT_EQ(Find(name)->value, index + kPairs) << name;
    as.opt.PredefinedSymbolsEnabled.bits = 1;
  }
}

TEST_F(SymbolTableTest, CaseFolding) {
  EXPECT_EQ(Define("lower", T_CODE, 1), "");
  as.opt.NOCASE.bits = 1;
  EXPECT_EQ(Find("lower"), nullptr);  // it stands in a chain no longer searched
  EXPECT_EQ(Define("foo", T_CODE, 2), "");
  EXPECT_EQ(Define("FOO", T_CODE, 3), "Duplicate label");
  EXPECT_EQ(Find("Foo")->value, 2);
  EXPECT_EQ(Define(".bar", T_CODE, 4), "");
  EXPECT_EQ(Find(".BAR")->value, 4);
}

}  // namespace
}  // namespace ta51
