#ifndef TESTS_DRIVER_TEXTBUFFER_H
#define TESTS_DRIVER_TEXTBUFFER_H

#include <sql.h>
#include <sqlext.h>

#include <string>
#include <vector>

// A text handed to a call, in narrow (UTF-8) or wide (UTF-16) characters, with a terminator.
class TextArgument
{
public:
  TextArgument(bool wideCalls, const std::string& text);

  SQLCHAR* Narrow() { return reinterpret_cast<SQLCHAR*>(narrow.data()); }
  SQLWCHAR* Wide() { return reinterpret_cast<SQLWCHAR*>(wide.data()); }
  SQLPOINTER Data() { return isWide ? static_cast<SQLPOINTER>(wide.data()) : narrow.data(); }
  SQLLEN Units() const { return static_cast<SQLLEN>(isWide ? wide.size() : narrow.size()); }
  SQLLEN Bytes() const { return isWide ? 2 * Units() : Units(); }

private:
  bool isWide;
  std::string narrow;
  std::u16string wide;
};

// A buffer for text that a call fills. It is poisoned, and holds some units more than it tells.
class TextBuffer
{
public:
  TextBuffer(bool isWide, size_t unitCount);

  SQLPOINTER Data() { return bytes.data(); }
  SQLCHAR* Narrow() { return bytes.data(); }
  SQLWCHAR* Wide() { return reinterpret_cast<SQLWCHAR*>(bytes.data()); }
  SQLSMALLINT Units() const { return static_cast<SQLSMALLINT>(units); }
  SQLLEN Bytes() const { return static_cast<SQLLEN>(units * width); }
  bool IsWide() const { return width == 2; }

  // The text before the first terminator, or "<no terminator>" if there is none in the told part.
  std::string Text() const;
  bool IsUntouched() const { return IsPoisonFrom(0); }
  // True if nothing behind the told part was written.
  bool IsKeptInside() const { return IsPoisonFrom(units * width); }

private:
  bool IsPoisonFrom(size_t start) const;

  size_t width;
  size_t units;
  std::vector<unsigned char> bytes;
};

#endif
