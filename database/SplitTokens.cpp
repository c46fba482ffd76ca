#include "database/SplitTokens.h"

#include "foundation/FatalEnd.h"

#include <stddef.h>

#include <memory>

void SplitTokens(const QulString& text, QulArray<QulString>& tokens, const wchar_t* delimiters)
{
  tokens.Clear();
  // The runtime writes terminators between the pieces.
  const size_t size = static_cast<size_t>(text.Length()) + 1;
  const std::unique_ptr<wchar_t[]> pieces(new wchar_t[size]);
  RequireFits(wcscpy_s(pieces.get(), size, text.Text()));
  wchar_t* rest = nullptr;
  for (const wchar_t* token = wcstok_s(pieces.get(), delimiters, &rest); token != nullptr;
       token = wcstok_s(nullptr, delimiters, &rest)) {
    tokens.Append(token);
  }
}
