#ifndef TESTS_FOUNDATION_ARRAYS_H
#define TESTS_FOUNDATION_ARRAYS_H

// Arrays of the array tests.

#include "foundation/QulArray.h"
#include "tests/unit/foundation/Texts.h"

#include <string>

using IntArray = QulArray<int>;
using StringArray = QulArray<QulString>;

// As the rows of stored tables: texts and flags without initialisers of their own.
struct Row
{
  QulString first;
  QulString second;
  char flag;
  bool used;
};

inline void FillWithNumbers(IntArray& array, int count)
{
  for (int i = 0; i < count; ++i)
    array.Append(100 + i);
}

// One element for each letter.
inline StringArray ArrayOf(const std::string& letters)
{
  StringArray array;
  for (const char letter : letters)
    array.Append(Handle(std::string(1, letter)));
  return array;
}

inline std::string Joined(const StringArray& array)
{
  std::string text;
  for (int i = 0; i < array.count; ++i)
    text += "[" + TextOf(array.data[i]) + "]";
  return text;
}

#endif
