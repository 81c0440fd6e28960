// The first pass defines these names; the second only checks that the same
// value comes out, so a change between the passes cannot go unnoticed.
#include "directives/definitions.h"

#include "directives/segments.h"
#include "core/diagnostics.h"
#include "core/statement.h"
#include "symbols/expression.h"
#include "symbols/symbols.h"
#include "isa/operands.h"
#include "isa/predefined.h"

namespace ta51 {

namespace {

constexpr uint32_t kFirstBitByte = 0x20;
constexpr uint32_t kLastBitByte = 0x2F;
constexpr uint32_t kLastBitNumber = 7;
constexpr uint32_t kDirectAddressLimit = 256;

constexpr ExternType kExternTypes[] = {
    {"CODE", T_CODE},
    {"DATA", T_DATA},
    {"XDATA", T_XDATA},
    {"IDATA", T_IDATA},
    {"BIT", T_BIT},
    {"NUMBER", T_NUMBER},
};

// The name at `name` with the statement's item count and size.
void DefineNamed(Assembler& as, const char* name, int32_t value, int32_t type, int32_t relocation) {
  SymbolDefinition definition;
  definition.value = value;
  definition.type = type;
  definition.relocation = relocation;
  definition.itemCount = as.ItemCount;
  definition.itemSize = as.ItemSize;
  DefineSymbol(as, name, definition);
}

void DefineLabelAs(Assembler& as, int32_t value, int32_t type) {
  DefineNamed(as, as.Line.Pointer(as.LabelOffset), value, type, REL_NULL);
}

// The symbol of the statement's label, found again in the second pass.
SymbolEntry* LabelSymbol(Assembler& as) {
  LookupSymbol(as, as.Line.Pointer(as.LabelOffset));
  return as.LineHasError ? nullptr : as.FoundSymbol;
}

// `byte.bit`, with the dot read, into a bit address; false after an error.
bool BitOfByte(Assembler& as, int32_t& value) {
  auto byteAddress = static_cast<uint32_t>(value);
  if (!IsBitAddressable(byteAddress)) return ReportError(as, 78);
  int32_t bit = EvaluateAbsolute(as);
  if (as.LineHasError) return false;
  if (static_cast<uint32_t>(bit) > kLastBitNumber) return ReportError(as, 78);
  // Bytes 20H to 2FH hold bits 0 to 7FH; a register's bits follow its address.
  if (byteAddress >= kFirstBitByte && byteAddress <= kLastBitByte) byteAddress = (byteAddress - kFirstBitByte) * 8;
  value = static_cast<int32_t>(byteAddress + static_cast<uint32_t>(bit));
  return true;
}

// What PUBLIC does to a name in the first pass.
void DeclarePublic(Assembler& as) {
  int type = LookupSymbol(as, as.Line.Here());
  if (as.LineHasError) return;
  switch (type) {
    case 0:
      DefineNamed(as, as.Line.Here(), 0, T_DECLARED, REL_XDEF);
      break;
    case T_BIT: case T_DATA: case T_CODE: case T_NUMBER: case T_XDATA: case T_IDATA:
      MarkPublic(as, 0, 0);
      break;
    case T_DECLARED:
      break;  // announced twice
    default:
      ReportError(as, 72);
      break;
  }
}

// What EXTRN does to a name in the first pass.
void DeclareExternal(Assembler& as, int32_t type) {
  LookupSymbol(as, as.Line.Here());
  if (as.LineHasError) return;
  const SymbolEntry* found = as.FoundSymbol;
  if (found == nullptr) {
    DefineNamed(as, as.Line.Here(), as.NextExternalIndex++, type, REL_XREF);
    return;
  }
  // Declared again alike, or public already: the name stays as it is.
  if ((found->relocation == REL_XREF && found->type == type) || found->relocation == REL_XDEF) return;
  ReportError(as, 13);
}

// Reads the name at the read offset and moves past it; false after an error.
bool ReadListedName(Assembler& as) {
  SkipBlanks(as);
  if (!ReadName(as, as.Line.Here())) {
    if (!as.LineHasError) ReportError(as, 11);
    return false;
  }
  return true;
}

int32_t ReadExternType(Assembler& as) {
  SkipBlanks(as);
  for (const ExternType& row : kExternTypes)
    if (MatchKeyword(as, row.keyword, " \t(")) return row.type;
  return 0;
}

// The names of one `type(...)` group of EXTRN; false after an error.
bool ReadExternGroup(Assembler& as, int32_t type) {
  while (true) {
    if (!ReadListedName(as)) return false;
    if (!as.SecondPass) DeclareExternal(as, type);
    if (as.LineHasError) return false;
    as.Line.offset += static_cast<int32_t>(as.NameBuffer.size());
    if (as.Line.Peek() == ',') {
      ++as.Line.offset;
      continue;
    }
    if (NextNonBlank(as) == ')') return true;
    --as.Line.offset;
    ReportError(as, 5);
    return false;
  }
}

}  // namespace

std::span<const ExternType> ExternTypes() { return kExternTypes; }

int AddressDirective(Assembler& as, int32_t type) {
  if (!as.LineHasLabel) return ReportError(as, 27);
  as.LineValue = EvaluateAbsolute(as, true);
  if (as.LineHasError) return 0;
  if (!as.SecondPass) {
    bool byteSpace = type == T_DATA || type == T_IDATA;
    if (byteSpace && static_cast<uint32_t>(as.LineValue) >= kDirectAddressLimit) return ReportError(as, 84);
    DefineLabelAs(as, as.LineValue, type);
    return kResultNoLabel;
  }
  SymbolEntry* symbol = LabelSymbol(as);
  if (symbol == nullptr || symbol->value != as.LineValue) return ReportError(as, 17);
  return kResultNoLabel;
}

int BitDirective(Assembler& as) {
  if (!as.LineHasLabel) return ReportError(as, 27);
  int32_t value = EvaluateAbsolute(as, true);
  if (as.LineHasError) return 0;
  if (as.ExprType != T_BIT) {
    if (as.Line.Peek() == '.') {
      ++as.Line.offset;
      if (!BitOfByte(as, value)) return 0;
    } else if (as.ExprType != T_NUMBER || static_cast<uint32_t>(value) >= kDirectAddressLimit) {
      return ReportError(as, 78);
    }
  }
  as.LineValue = value;
  if (!as.SecondPass) {
    DefineLabelAs(as, value, T_BIT);
    return kResultNoLabel;
  }
  SymbolEntry* symbol = LabelSymbol(as);
  if (symbol == nullptr || symbol->type != T_BIT || symbol->value != value) return ReportError(as, 17);
  return kResultNoLabel;
}

int PublicDirective(Assembler& as) {
  as.ShowLineValue = false;
  while (true) {
    if (!ReadListedName(as)) return 0;
    if (!as.SecondPass) DeclarePublic(as);
    if (as.LineHasError) return 0;
    as.Line.offset += static_cast<int32_t>(as.NameBuffer.size());
    if (as.Line.Peek() != ',') return kResultNoLabel;
    ++as.Line.offset;
  }
}

int ExternDirective(Assembler& as) {
  as.ShowLineValue = false;
  while (true) {
    int32_t type = ReadExternType(as);
    if (type == 0) return ReportError(as, 91);
    if (NextNonBlank(as) != '(') {
      --as.Line.offset;
      return ReportError(as, 58);
    }
    if (!ReadExternGroup(as, type)) return 0;
    if (NextNonBlank(as) != ',') {
      --as.Line.offset;
      return kResultNoLabel;
    }
  }
}

int UsingDirective(Assembler& as) {
  as.LineValue = EvaluateAbsolute(as);
  if (as.LineHasError) return 0;
  if (static_cast<uint32_t>(as.LineValue) > 3) return ReportError(as, 10);
  EnterBankRegisters(as, as.LineValue);
  as.RegisterBankUsed[as.LineValue] = true;
  return kResultNoLabel;
}

// `$REGISTERBANK(n [, n] ...)`: marks banks as used without moving AR0..AR7.
int RegisterBankControl(Assembler& as) {
  if (as.Line.Peek() != '(') return ReportError(as, 58);
  ++as.Line.offset;
  while (true) {
    as.LineValue = EvaluateAbsolute(as);
    if (as.LineHasError) return 0;
    if (static_cast<uint32_t>(as.LineValue) > 3) return ReportError(as, 10);
    as.RegisterBankUsed[as.LineValue] = true;
    SkipBlanks(as);
    char c = as.Line.Peek();
    if (c == ')') {
      ++as.Line.offset;
      return kResultNoLabel;
    }
    if (c == '\n' || c == '\0') return ReportError(as, 5);
    ++as.Line.offset;
  }
}

}  // namespace ta51
