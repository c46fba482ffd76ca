// wsprintfW, which knows no size of its destination: what it writes has 1,024 characters at most,
// the terminator included, and the rest is cut.
#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <windows.h>

#include <string.h>

#include <algorithm>
#include <vector>

namespace {

constexpr size_t MessageCharacters = 1024;

void Append(std::vector<wchar_t>& message, const wchar_t* text)
{
  if (text == nullptr)
    text = L"(null)";
  while (*text != L'\0')
    message.push_back(*text++);
}

}  // namespace

INT WINAPIV wsprintfW(LPWSTR destination, LPCWSTR format, ...)
{
  std::vector<wchar_t> message;
  __builtin_ms_va_list arguments;
  __builtin_ms_va_start(arguments, format);
  for (const wchar_t* p = format; *p != L'\0'; ++p) {
    if (*p != L'%') {
      message.push_back(*p);
      continue;
    }
    ++p;
    if (*p == L's')
      Append(message, __builtin_va_arg(arguments, const wchar_t*));
    else if (*p == L'd')
      Append(message, WideText(std::to_string(__builtin_va_arg(arguments, int))).c_str());
    else if (*p == L'%')
      message.push_back(L'%');
    else
      EndUnprepared("wsprintfW was asked for a conversion that the doubles do not know.");
  }
  __builtin_ms_va_end(arguments);

  const size_t length = std::min(message.size(), MessageCharacters - 1);
  if (length > 0)
    memcpy(destination, message.data(), length * sizeof(wchar_t));
  destination[length] = L'\0';
  return static_cast<INT>(length);
}
