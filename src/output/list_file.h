// The list file: listed lines, page headers and the symbol table.
#pragma once

#include "core/assembler.h"

namespace ta51 {

// Lists the current line: number, address, up to three bytes a row and the
// source text in four aligned fields; further rows for more bytes and for
// text cut at the line limit.
void ListLine(Assembler& as);
// Counts a page and, with PAGE on, writes the page break and the header.
void NewPage(Assembler& as);
// Before each pass: the layout of the run's start, and a new page at the
// first listed line, counted from 1.
void StartListPass(Assembler& as);
// One empty line, counted on the page.
void ListBlankLine(Assembler& as);
// Symbols, bit addresses, register variables and the register banks used.
void ListSymbolTable(Assembler& as);

// FIELDS a,b,c: the widths of the label, opcode and operand fields.
int FieldsDirective(Assembler& as);
// PAGEWIDTH n: the longest list line, 0 for no limit.
int PageWidthDirective(Assembler& as);

}  // namespace ta51
