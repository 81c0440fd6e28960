// The line loop: one iteration per logical line, shared by the two passes,
// by included files and by macro calls.
#include "driver/pass.h"

#include <cctype>

#include "driver/directive_dispatch.h"
#include "directives/segments.h"
#include "core/diagnostics.h"
#include "core/instruction_stream.h"
#include "core/keyword_index.h"
#include "core/statement.h"
#include "core/keyword_tables.h"
#include "driver/line_reader.h"
#include "driver/statement_reuse.h"
#include "core/option_keywords.h"
#include "output/debug_records.h"
#include "output/list_file.h"
#include "output/object_file.h"
#include "symbols/expression.h"
#include "symbols/symbols.h"
#include "isa/encoder.h"
#include "isa/predefined.h"
#include "textlang/textlang.h"

namespace ta51 {

namespace {

constexpr size_t kOpcodeWordLimit = 19;

void ClearLineState(Assembler& as) {
  as.SavedBytesFlag = false;
  as.ExprUndefined = false;
  as.LineHasLabel = false;
  as.NeedsSizeByte = false;
  as.LineHasError = false;
  as.ShowLineValue = true;
  as.ListThisLine = true;
  as.CodeLength = 0;
  as.LabelOffset = as.OpcodeOffset = as.OperandOffset = as.CommentOffset = 0;
}

void PrepareFetchedLine(Assembler& as) {
  as.LabelOffset = as.OpcodeOffset = as.OperandOffset = as.CommentOffset = 0;
  as.OperandSlot1.Clear();
  as.OperandSlot2.Clear();
  as.CodeBuffer[0] = as.CodeBuffer[1] = as.CodeBuffer[2] = 0;
  if (as.CurrentSegment != nullptr) as.LineValue = static_cast<int32_t>(as.CurrentSegment->location);
}

void MarkLabelAtOffset(Assembler& as) {
  as.LineHasLabel = true;
  as.LabelOffset = as.Line.offset;
  SkipName(as);
  --as.Line.offset;
}

// Outside the .a51 dialect a label stands at the first character.
void FindFirstColumnLabel(Assembler& as) {
  if (ReadName(as, as.Line.Pointer(0))) {
    if (!as.SecondPass) as.Symbols.Prefetch(as.NameBuffer);
    MarkLabelAtOffset(as);
  } else if (!IsBlank(as.Line.At(0))) {
    ReportError(as, 11);
  }
}

bool IsDirectiveWord(std::string_view word) {
  return FindKeywordIgnoringCase(kGeneralDirectives, word) != nullptr;
}

// A name followed by a colon, by `=`, or alone on its line when PUBLIC has
// announced it.
bool IsColonOrDeclaredLabel(Assembler& as) {
  const char* here = as.Line.Here();
  if (!ReadName(as, here)) return false;
  size_t after = as.NameBuffer.size();
  if (here[after] == ':') return true;
  if (here[after] == '\0') return false;
  size_t next = after + 1;
  while (IsBlank(here[next])) ++next;
  if (here[next] == '=') return true;
  if (here[next] == '\0' || here[next] == '\n' || here[next] == ';') {
    SymbolEntry* symbol = FindSymbol(as, as.NameBuffer);
    return symbol != nullptr && symbol->type == T_DECLARED;
  }
  return false;
}

// `COUNT EQU 3`, `BUF DS 4`: a word followed by a directive is a label.
bool IsLabelBySecondWord(Assembler& as) {
  const char* here = as.Line.Here();
  if (!ReadName(as, here) || IsDirectiveWord(as.NameBuffer)) return false;
  const char* next = here + as.NameBuffer.size();
  while (IsBlank(*next)) ++next;
  if (!ReadName(as, next)) return false;
  std::string second = as.NameBuffer;
  for (char& c : second) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return second == "EQU" || second == "SET" || IsDirectiveWord(second) ||
         FindKeywordIgnoringCase(kDataDirectives, second) != nullptr;
}

void FindPercentDialectLabel(Assembler& as) {
  SkipBlanks(as);
  if (IsColonOrDeclaredLabel(as)) MarkLabelAtOffset(as);
  if (as.LineHasError) return;
  if (IsLabelBySecondWord(as)) MarkLabelAtOffset(as);
}

// The label of a statement, defined in the first pass at the position of the
// current segment.
void DefineLabel(Assembler& as, int result) {
  if (as.SecondPass || !as.LineHasLabel) return;
  EnsureCurrentSegment(as);
  SegmentEntry* segment = as.CurrentSegment;
  SymbolDefinition definition;
  definition.value = static_cast<int32_t>(segment->location);
  definition.type = segment->type;
  definition.segment = segment;
  definition.itemCount = as.ItemCount;
  definition.itemSize = (result == kResultDone || result == kResultMacroCall || result == kResultNamedMacroCall)
                            ? as.ItemSize
                            : 0;
  DefineSymbol(as, as.Line.Pointer(as.LabelOffset), definition);
}

// Result 0: a label alone, a comment, a parenthesis, or a bad opcode.
void FinishEmptyStatement(Assembler& as) {
  DefineLabel(as, kResultNone);
  LineCursor& line = as.Line;
  line.offset = as.CommentOffset = as.OperandOffset = as.OpcodeOffset;
  SkipBlanks(as);
  char c = line.Peek();
  ++line.offset;
  if (c == '(' || c == ')') return;
  if (c == '\n' || c == '\0' || c == ';' || (c == '/' && (line.Peek() == '/' || line.Peek() == '*'))) {
    --line.offset;
    return;
  }
  ReportError(as, 26);
  --line.offset;
}

void FinishInstruction(Assembler& as) {
  DefineLabel(as, kResultInstruction);
  if (as.LineHasError) return;
  if (!as.SecondPass) {
    if (as.NeedsSizeByte) WriteInstructionRecord(as);
    as.TotalBytes += static_cast<uint32_t>(as.CodeLength);
  } else if (!as.opt.OBJ) {
    as.TotalBytes += static_cast<uint32_t>(as.CodeLength);
  } else {
    if (as.opt.DEBUG && !as.DebugFileSeen) NoteInstructionLine(as);
    EmitInstruction(as);
  }
}

// The register or the expression of EQU and SET; false after an error.
bool EvaluateEquOperand(Assembler& as, int& registerCode, int32_t& value) {
  registerCode = RegisterOperand(as, " \t\n");
  if (registerCode >= 0) {
    as.ShowLineValue = false;
    return true;
  }
  as.OperandSlot1.text.clear();
  ExprValue expr;
  value = EvaluateExpression(as, expr, &as.OperandSlot1.text);
  as.LineValue = value;
  return !as.LineHasError;
}

void DefineEquSymbol(Assembler& as, int32_t value, int32_t type, bool settable, std::string_view text) {
  SymbolDefinition definition;
  definition.value = value;
  definition.type = type;
  definition.settable = settable;
  definition.itemCount = as.ItemCount;
  definition.itemSize = as.ItemSize;
  definition.expression = text;
  DefineSymbol(as, as.Line.Pointer(as.LabelOffset), definition);
}

void FinishEquOperand(Assembler& as) {
  if (!as.LineHasError) CheckOperandEnd(as);
  as.CommentOffset = as.Line.offset;
}

void ReadEqu(Assembler& as, int result, int& registerCode) {
  if (result == kResultEqu && !as.LineHasLabel) {
    ReportError(as, 27);
    return;
  }
  if (result == kResultDotEqu) {
    as.LabelOffset = as.Line.offset;
    SkipName(as);
    --as.Line.offset;
    SkipBlanks(as);
    ++as.Line.offset;
    as.OperandOffset = as.Line.offset;
  }
  if (as.InMacroExpansion) SubstituteParameters(as, as.Line.offset, true);
  int32_t value = 0;
  if (!EvaluateEquOperand(as, registerCode, value)) return;
  if (!as.SecondPass) {
    if (registerCode >= 0) {
      DefineEquSymbol(as, registerCode, T_REGEQU, false, {});
    } else if (as.ExprUndefined) {
      ReportError(as, 33, true, as.OperandSlot1.text);
    } else {
      DefineEquSymbol(as, value, as.ExprType, false, as.OperandSlot1.text);
    }
  }
  FinishEquOperand(as);
}

void ProcessEqu(Assembler& as, int result) {
  int registerCode = -1;
  ReadEqu(as, result, registerCode);
  if (!as.SecondPass)
    KeepDefinition(as, result, registerCode);
  else if (as.Reuse.definitionCheckPending)
    CheckReusedDefinition(as, result, registerCode);
}

void ProcessSet(Assembler& as) {
  if (!as.LineHasLabel) {
    ReportError(as, 27);
    return;
  }
  if (as.InMacroExpansion) SubstituteParameters(as, as.Line.offset, true);
  int registerCode = -1;
  int32_t value = 0;
  if (!EvaluateEquOperand(as, registerCode, value)) return;
  if (registerCode >= 0) {
    DefineEquSymbol(as, registerCode, T_REGSET, false, {});
  } else if (as.ExprUndefined) {
    ReportError(as, 33);
  } else {
    DefineEquSymbol(as, value, as.ExprType, true, as.OperandSlot1.text);
  }
  FinishEquOperand(as);
}

void ProcessMacroDefinition(Assembler& as, int result) {
  if (as.InMacroExpansion) {
    ReportError(as, 49);
    return;
  }
  if (result == kResultMacro && !as.LineHasLabel) {
    ReportError(as, 27);
    return;
  }
  MacroStatement(as, result);
}

// With the line table on, a call has one entry for all the code of its body.
void RunMacroCall(Assembler& as, int result) {
  if (!LineTableWanted(as)) {
    MacroCall(as, result);
    return;
  }
  CallLineMark mark = MarkCallLine(as);
  MacroCall(as, result);
  RecordCallLine(as, mark);
}

// What the result of a statement asks of the loop; false when the
// iteration ends here (step 17).
bool ActOnResult(Assembler& as, int result) {
  switch (result) {
    case kResultNone: FinishEmptyStatement(as); break;
    case kResultInstruction: FinishInstruction(as); break;
    case kResultDone: DefineLabel(as, result); break;
    case kResultEqu: case kResultDotEqu: ProcessEqu(as, result); break;
    case kResultSet: ProcessSet(as); break;
    case kResultMacro: case kResultDotMacro: ProcessMacroDefinition(as, result); break;
    case kResultMacroCall: case kResultNamedMacroCall:
      DefineLabel(as, result);
      if (!as.LineHasError) RunMacroCall(as, result);
      return false;
    case kResultListed: return false;
    default: break;
  }
  return true;
}

void FinishLine(Assembler& as) {
  SkipBlanks(as);
  if (!as.CommentLine) as.CommentOffset = as.Line.offset;
  if (as.opt.LIST) ListLine(as);
  if (as.CurrentSegment != nullptr) as.CurrentSegment->location += static_cast<uint32_t>(as.CodeLength);
}

void AssembleLine(Assembler& as) {
  if (as.InMacroExpansion && !IsWhiteSpace(as.Line.Peek()) && as.Line.Peek() != ';') {
    SubstituteParameters(as, as.Line.offset, true);
    if (as.LineHasError) return;
  }
  if (as.BlankLine || as.CommentLine) {
    as.ShowLineValue = false;
    if (as.opt.LIST) ListLine(as);
    return;
  }
  if (as.PercentDialect)
    FindPercentDialectLabel(as);
  else
    FindFirstColumnLabel(as);
  as.ItemSize = 1;
  as.ItemCount = 1;
  as.ItemIsText = false;
  int result = ProcessStatement(as);
  as.CommentOffset = as.Line.offset;
  if (as.LineHasError) return;
  bool checksTail = result == kResultInstruction || result == kResultDone || result == kResultNoLabel;
  if (checksTail && !as.CommentLine && as.Line.offset != as.OperandOffset) {
    CheckOperandEnd(as);
    if (as.LineHasError) return;
  }
  if (!ActOnResult(as, result) || as.LineHasError) return;
  FinishLine(as);
}

// The opcode word, in upper case, into as.OpcodeWord (its buffer is reused
// from line to line), with its keyword hash: one walk over the characters.
std::string_view ReadOpcodeWord(Assembler& as, uint32_t& hash) {
  LineCursor& line = as.Line;
  const int32_t start = line.offset;
  const char* text = line.Pointer(start);  // past the text it reads the end
  const bool stopAtParenthesis = as.PercentDialect;
  size_t length = 0;
  while (true) {
    const char c = text[length];
    if (c == '\0' || IsWhiteSpace(c) || (c == '.' && length != 0) || (c == '(' && stopAtParenthesis)) break;
    // The word stops at its limit with the cursor on its last character.
    if (length + 1 == kOpcodeWordLimit) {
      line.offset = start + static_cast<int32_t>(length);
      ++length;
      break;
    }
    line.offset = start + static_cast<int32_t>(++length);
  }
  std::string& word = as.OpcodeWord;
  word.resize(length);
  hash = kKeywordHashStart;
  for (size_t i = 0; i < length; ++i) {
    word[i] = FoldKeywordChar(text[i]);
    hash = KeywordHashStep(hash, word[i]);
  }
  return word;
}

// Keyword tables after the directives, searched once the operand field is known.
int DispatchLateKeywords(Assembler& as, std::string_view word, uint32_t hash) {
  if (as.PercentDialect) {
    if (const KeywordRow* row = FindKeyword(kDollarControls, word, hash)) return ProcessControl(as, row->code);
    if (word[0] == '%')
      if (const KeywordRow* row = FindKeyword(kPercentKeywords, word, hash)) return PercentKeyword(as, row->code);
  }
  // EQU and SET are the common ones here; no other of these tables holds
  // their words, so they are looked for first.
  if (const KeywordRow* row = FindKeyword(kDefiningKeywords, word, hash)) return row->code;
  if (const KeywordRow* row = FindKeyword(kIfKeywords, word, hash)) return ProcessConditional(as, row->code);
  if (const KeywordRow* row = FindKeyword(kEndKeywords, word, hash)) return ProcessConditionalEnd(as, row->code);
  int option = FindOption(word, hash);
  if (option != kNoOption) return ProcessOption(as, option);
  return -1;
}

int MacroNameCall(Assembler& as) {
  as.Line.offset = as.OpcodeOffset;
  if (!ReadName(as, as.Line.Here())) return kResultNone;
  int type = LookupSymbol(as, as.Line.Here());
  if (type != T_MACRO && type != T_NAMEDMACRO) return kResultNone;
  // The arguments start behind the name and its blanks; the expression
  // reader must not take a first argument such as `MOD,1` as an operator,
  // nor rewrite it for a running call.
  as.Line.offset += static_cast<int32_t>(as.NameBuffer.size());
  SkipBlanks(as);
  return type == T_MACRO ? kResultMacroCall : kResultNamedMacroCall;
}

}  // namespace

namespace {

int ReadStatement(Assembler& as) {
  SkipBlanks(as);
  char first = as.Line.Peek();
  if (as.InMacroExpansion) SubstituteParameters(as, as.Line.offset, false);
  as.OpcodeOffset = as.Line.offset;
  if (first == '\n' || first == '\0') return kResultNone;
  if (as.PercentDialect && first == '%' && TryPercentCall(as)) return kResultInstruction;
  if (!as.SecondPass)
    WatchStatement(as);
  else if (int reused = ReuseStatement(as))
    return reused;
  uint32_t hash = 0;
  std::string_view word = ReadOpcodeWord(as, hash);
  int mnemonic = FindMnemonic(word, hash);
  if (mnemonic >= 0) {
    int result = EncodeInstruction(as, kMnemonics[mnemonic].base, mnemonic);
    if (!as.SecondPass) KeepStatement(as, result);
    return result;
  }
  const KeywordRow* directive = FindKeyword(kDataDirectives, word, hash);
  if (directive == nullptr) directive = FindKeyword(kGeneralDirectives, word, hash);
  if (directive != nullptr) return ProcessDirective(as, directive->code);
  SkipBlanks(as);
  as.OperandOffset = as.Line.offset;
  int late = word.empty() ? -1 : DispatchLateKeywords(as, word, hash);
  if (late >= 0) return late;
  return MacroNameCall(as);
}

}  // namespace

int ProcessStatement(Assembler& as) {
  int result = ReadStatement(as);
  if (as.Reuse.checkPending) CheckReusedStatement(as, result);
  return result;
}

void AssemblePass(Assembler& as) {
  do {
    ClearLineState(as);
    // The lines of a percent expansion keep the number of the call.
    if (!FetchCountedLine(as, true)) break;
    PrepareFetchedLine(as);
    AssembleLine(as);
    // A checked EQU record whose line never came to read its value.
    if (as.Reuse.definitionCheckPending) CheckReusedDefinition(as, kResultNone, -1);
  } while (!as.EndSeen);
}

}  // namespace ta51
