#ifndef FOUNDATION_QULSTRING_H
#define FOUNDATION_QULSTRING_H

#include "foundation/QulArray.h"

#include <stdint.h>
#include <wchar.h>

// Characters of the longest composed text, terminator counted. A text that needs more ends the
// process (EndOnInvalidParameter); narrow text that does comes out as the conversion leaves it.
constexpr int QulStringLimit = 524288;

// Names of fixed tables (static arrays of QulString) are initialised with this priority. Objects
// without a priority, such as the scratch buffers below, come after them in whatever order the
// files are linked; the literals of a name table may not be empty, for an empty string needs those.
constexpr int NameTableInitPriority = 200;

using QulCharArray = QulArray<wchar_t>;

// The text that handles share. It never changes, and its characters are overwritten with zeros
// before the memory is given back.
class QulStringRepr
{
public:
  // Copies source, which is not null.
  explicit QulStringRepr(const wchar_t* source);
  QulStringRepr(const QulStringRepr&) = delete;
  QulStringRepr& operator=(const QulStringRepr&) = delete;
  virtual ~QulStringRepr();

  wchar_t* text;         // length + 1 characters, owned
  int32_t refCount = 1;  // handles that share it; not atomic
};

// The working areas of all composed text, of QulStringLimit characters. A pointer into one of them
// holds only until the next operation on a QulString.
extern wchar_t* const QulWideScratch;
extern char* const QulNarrowScratch;

// Shared by all empty strings, never deleted; its reference count means nothing.
extern QulStringRepr* const QulStringEmptyRepr;

// The text type of the system: a handle onto a shared representation, meant to be copied. Indices
// and counts are in characters of 16 bits. Comparison and search go by character, with regard to
// case unless the name says otherwise.
class QulString
{
public:
  QulString();
  // cppcheck-suppress noExplicitConstructor ; literals are given wherever a text is taken
  QulString(const wchar_t* source);        // null gives the empty string
  explicit QulString(const char* source);  // in the ANSI code page; null gives the empty string
  QulString(const QulString& source);
  // Assign sees that the text is the same, and gives this object.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment,misc-unconventional-assign-operator)
  QulString& operator=(const QulString& source) { return Assign(source); }
  ~QulString();

  // NUL-terminated, never null, good as long as a handle shares the text.
  const wchar_t* Text() const { return repr->text; }

  // Counts the characters anew at each call.
  int Length() const { return static_cast<int>(wcslen(repr->text)); }

  // Index of the first occurrence of needle, -1 if there is none; an empty string holds nothing,
  // not even an empty needle.
  int Find(const QulString& needle) const
  {
    return repr->text[0] == L'\0' ? -1 : IndexFrom(0, needle);
  }
  // The same from index start on; -1 if start lies outside the text. The index counts from 0.
  int Find(const QulString& needle, int start) const
  {
    return start < 0 || start >= Length() ? -1 : IndexFrom(start, needle);
  }

  bool EqualsNoCase(const QulString& other) const
  {
    return _wcsicmp(repr->text, other.repr->text) == 0;
  }

  QulString& Assign(const QulString& source);
  // The text may be part of a scratch buffer but not of this handle's own text. Null gives the
  // empty string, here and below.
  QulString& Assign(const wchar_t* source);
  // As Assign, for text in the ANSI code page.
  QulString& AssignNarrow(const char* source);

  // What these take may be this handle's own text, but doesn't lie in a scratch buffer.
  static QulString Concat(const QulString& left, const QulString& right);
  QulString& Append(const QulString& right);
  // printf into this handle; in Format %s is wide text, in FormatNarrow narrow text in the ANSI
  // code page.
  QulString& Format(const wchar_t* format, ...);
  QulString& FormatNarrow(const char* format, ...);
  // Replaces every occurrence of needle from left to right and returns their number; an empty
  // needle occurs nowhere. What a replacement brings in is not searched again.
  int Replace(const QulString& needle, const QulString& replacement);

  // The first or last count characters: all of them if there are fewer, none below 0.
  QulString Left(int count) const;
  QulString Right(int count) const;
  // Up to count characters from start, which lies between 0 and Length(). A negative count ends the
  // process or throws std::bad_alloc.
  QulString Mid(int start, int count) const;
  // Assigns up to count characters of source from start on to this handle and returns them too; the
  // empty string if start lies outside the source. A negative count is as in Mid.
  QulString SubString(const QulString& source, int start, int count);
  QulString SubStringFrom(const QulString& source, int start);

  // Remove the leading or trailing characters that are in set. The default set knows no carriage
  // return, so one at the end of a line stays.
  void TrimLeft(const QulString& set = DefaultTrimSet);
  void TrimRight(const QulString& set = DefaultTrimSet);

  // The characters from index first to index last, both counted in; the empty string if they are no
  // range of the array. Neither is negative. For an empty array the handle has no representation
  // and may only be destroyed.
  static QulString FromCharRange(const QulCharArray& characters, int first, int last);

  QulStringRepr* repr;
  char* narrow = nullptr;  // place for a narrow copy, owned; nothing fills it yet

private:
  static constexpr const wchar_t* DefaultTrimSet = L"\t\n ";

  explicit QulString(QulStringRepr* shared);
  int IndexFrom(int start, const QulString& needle) const
  {
    const wchar_t* match = wcsstr(repr->text + start, needle.Text());
    return match == nullptr ? -1 : static_cast<int>(match - repr->text);
  }
  void Release();
  void DropNarrow();
};

inline QulString operator+(const QulString& left, const QulString& right)
{
  return QulString::Concat(left, right);
}

#endif
