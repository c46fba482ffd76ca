#ifndef UNIT_TYPETEXTS_H
#define UNIT_TYPETEXTS_H

// What statements have for each of ODBC's types, written out by hand.

#include <stdint.h>

struct TypeTexts
{
  int32_t type;
  int16_t bufferType;      // that it is bound as
  const char* definition;  // of a column A of size 7, without its null clause
  const char* literal;     // of TableRow::StoreManyForms
};

inline const TypeTexts TypesWithTexts[] = {
    {-10, -8, "[A] MEMO", "'\u0141'"}, {-9, -8, "[A] TEXT(7)", "'\u0141'"},
    {-7, -7, "[A] BIT", "65"},         {-6, 4, "[A] BYTE", "321"},
    {-1, -8, "[A] MEMO", "'\u0141'"},  {2, 8, "[A] DOUBLE", "1.500000"},
    {3, 8, "[A] DECIMAL", "1.500000"}, {4, 4, "[A] LONG", "321"},
    {5, 4, "[A] SMALLINT", "321"},     {6, 8, "", "1.500000"},
    {7, 8, "[A] REAL", "1.500000"},    {8, 8, "[A] DOUBLE", "1.500000"},
    {11, 11, "[A] DATE", "'0/0/321'"}, {12, -8, "[A] TEXT(7)", "'\u0141'"},
    {93, 11, "[A] DATE", "'0/0/321'"}, {99, -8, "", "'\u0141'"},
};

// All other types have nothing.
inline TypeTexts TextsOfType(int32_t type)
{
  for (const TypeTexts& texts : TypesWithTexts) {
    if (texts.type == type)
      return texts;
  }
  return {type, 0, "", ""};
}

#endif
