#ifndef TESTS_FOUNDATION_TEXTS_H
#define TESTS_FOUNDATION_TEXTS_H

// Texts of the string tests, between UTF-8 and handles.

#include "foundation/QulString.h"
#include "tests/doubles/Text.h"

#include <string>

inline std::string TextOf(const QulString& text)
{
  return Utf8(text.Text());
}

inline QulString Handle(const std::string& utf8)
{
  return QulString(WideText(utf8).c_str());
}

// A text of length letters x.
inline QulString LongText(int length)
{
  return Handle(std::string(static_cast<size_t>(length), 'x'));
}

// Gives the handle a narrow copy, as something that fills that place would.
inline void GiveNarrow(QulString& text)
{
  text.narrow = new char[2]{'n', '\0'};
}

#endif
