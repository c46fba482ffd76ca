#include "tests/doubles/CodePage.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <windows.h>

#include <string.h>

namespace {

// The page is Latin-1 but for these 32. Five places that it leaves open stand for themselves.
constexpr wchar_t From80To9F[] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                  0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::string SourceText(const char* source, int sourceBytes)
{
  if (source == nullptr || sourceBytes < 0)
    return QuotedAnsi(source);
  return QuotedAnsi(std::string(source, static_cast<size_t>(sourceBytes)).c_str());
}

int Convert(const char* source, int sourceBytes, wchar_t* destination, int capacity)
{
  const bool overlap = static_cast<const void*>(source) == static_cast<void*>(destination);
  if (source == nullptr || sourceBytes == 0 || capacity < 0 ||
      (destination == nullptr && capacity > 0) || overlap) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  // The terminator is converted too if the source is not counted.
  const int needed = sourceBytes < 0 ? static_cast<int>(strlen(source)) + 1 : sourceBytes;
  if (capacity == 0)
    return needed;
  // A text that is too long fills the buffer and leaves it without a terminator.
  const int written = needed < capacity ? needed : capacity;
  for (int i = 0; i < written; ++i)
    destination[i] = WideFromAnsi(source[i]);
  if (needed > capacity) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  return needed;
}

}  // namespace

wchar_t WideFromAnsi(char character)
{
  const unsigned char code = static_cast<unsigned char>(character);
  return code >= 0x80 && code < 0xA0 ? From80To9F[code - 0x80] : static_cast<wchar_t>(code);
}

char AnsiFromWide(wchar_t character)
{
  for (unsigned int code = 0; code < 256; ++code) {
    if (WideFromAnsi(static_cast<char>(code)) == character)
      return static_cast<char>(code);
  }
  return '?';
}

INT WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR source, INT sourceBytes,
                               LPWSTR destination, INT capacity)
{
  if (codePage != CP_ACP && codePage != 1252)
    EndUnprepared("MultiByteToWideChar knows code page 1252 alone.");
  if (flags != 0 && flags != MB_PRECOMPOSED)
    EndUnprepared("MultiByteToWideChar was called with flags " + Hex(flags) + ".");
  const int result = FailsWithLastError("MultiByteToWideChar")
                         ? 0
                         : Convert(source, sourceBytes, destination, capacity);
  WriteDiary("MultiByteToWideChar(" + std::to_string(codePage) + ", " + Hex(flags) + ", " +
             SourceText(source, sourceBytes) + ", " + std::to_string(sourceBytes) + ", " +
             std::to_string(capacity) + ") = " + std::to_string(result));
  return result;
}
