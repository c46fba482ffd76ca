#include "foundation/QulString.h"

#include "foundation/FatalEnd.h"

#include <windows.h>

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

// Ready in this order, since it is the order of one file. The wide one has a character more than
// the calls are told: MultiByteToWideChar leaves a text that is too long without a terminator.
wchar_t* const QulWideScratch = new wchar_t[QulStringLimit + 1]();
char* const QulNarrowScratch = new char[QulStringLimit]();
QulStringRepr* const QulStringEmptyRepr = new QulStringRepr(L"");

namespace {

bool IsEmptyText(const wchar_t* text)
{
  return text == nullptr || text[0] == L'\0';
}

QulStringRepr* ShareEmpty()
{
  return QulStringEmptyRepr;
}

QulStringRepr* MakeRepr(const wchar_t* text)
{
  return IsEmptyText(text) ? ShareEmpty() : new QulStringRepr(text);
}

// Gives the text in the scratch buffer. What doesn't fit it is left as the call leaves it.
const wchar_t* WidenToScratch(const char* text)
{
  QulWideScratch[0] = L'\0';
  (void)MultiByteToWideChar(CP_ACP, 0, text, -1, QulWideScratch, QulStringLimit);
  return QulWideScratch;
}

}  // namespace

QulStringRepr::QulStringRepr(const wchar_t* source)
{
  const size_t size = wcslen(source) + 1;
  text = new wchar_t[size];
  RequireFits(wcscpy_s(text, size, source));
}

QulStringRepr::~QulStringRepr()
{
  // Texts hold connection strings with passwords. SecureZeroMemory, since a plain memset of memory
  // that is freed next is a dead store to the optimiser.
  SecureZeroMemory(text, wcslen(text) * sizeof(wchar_t));
  delete[] text;
}

QulString::QulString() : repr(ShareEmpty()) {}

QulString::QulString(const wchar_t* source) : repr(MakeRepr(source)) {}

QulString::QulString(const char* source)
{
  const bool empty = source == nullptr || source[0] == '\0';
  repr = empty ? ShareEmpty() : MakeRepr(WidenToScratch(source));
}

QulString::QulString(const QulString& source) : QulString(source.repr) {}

QulString::QulString(QulStringRepr* shared) : repr(shared)
{
  if (repr != nullptr)
    ++repr->refCount;
}

QulString::~QulString()
{
  Release();
  DropNarrow();
}

void QulString::Release()
{
  if (repr == nullptr || repr == QulStringEmptyRepr)
    return;
  if (--repr->refCount < 1) {
    delete repr;
    repr = nullptr;
  }
}

void QulString::DropNarrow()
{
  if (narrow == nullptr)
    return;
  SecureZeroMemory(narrow, strlen(narrow));
  delete[] narrow;
  narrow = nullptr;
}

QulString& QulString::Assign(const QulString& source)
{
  if (repr == source.repr)
    return *this;
  DropNarrow();
  Release();
  repr = source.repr;
  ++repr->refCount;
  return *this;
}

QulString& QulString::Assign(const wchar_t* source)
{
  DropNarrow();
  Release();
  // Valid also if the allocation throws.
  repr = ShareEmpty();
  repr = MakeRepr(source);
  return *this;
}

QulString& QulString::AssignNarrow(const char* source)
{
  return Assign(QulString(source));
}

QulString QulString::Concat(const QulString& left, const QulString& right)
{
  RequireFits(wcscpy_s(QulWideScratch, QulStringLimit, left.Text()));
  RequireFits(wcscat_s(QulWideScratch, QulStringLimit, right.Text()));
  return QulString(QulWideScratch);
}

QulString& QulString::Append(const QulString& right)
{
  return Assign(Concat(*this, right));
}

QulString& QulString::Format(const wchar_t* format, ...)
{
  QulWideScratch[0] = L'\0';
  va_list arguments;
  va_start(arguments, format);
  RequireFormatted(vswprintf_s(QulWideScratch, QulStringLimit, format, arguments), QulStringLimit);
  va_end(arguments);
  return Assign(QulWideScratch);
}

QulString& QulString::FormatNarrow(const char* format, ...)
{
  QulNarrowScratch[0] = '\0';
  va_list arguments;
  va_start(arguments, format);
  RequireFormatted(vsprintf_s(QulNarrowScratch, QulStringLimit, format, arguments), QulStringLimit);
  va_end(arguments);
  return AssignNarrow(QulNarrowScratch);
}

int QulString::Replace(const QulString& needle, const QulString& replacement)
{
  const int needleLength = needle.Length();
  if (needleLength == 0)
    return 0;

  QulWideScratch[0] = L'\0';
  const wchar_t* const end = repr->text + Length();
  const wchar_t* tail = repr->text;
  int replaced = 0;
  const wchar_t* match = wcsstr(tail, needle.Text());
  while (match != nullptr) {
    ++replaced;
    RequireFits(wcsncat_s(QulWideScratch, QulStringLimit, tail, static_cast<size_t>(match - tail)));
    RequireFits(wcscat_s(QulWideScratch, QulStringLimit, replacement.Text()));
    tail = match + needleLength;
    match = tail < end ? wcsstr(tail, needle.Text()) : nullptr;
  }
  RequireFits(wcsncat_s(QulWideScratch, QulStringLimit, tail, static_cast<size_t>(end - tail)));
  Assign(QulWideScratch);
  return replaced;
}
