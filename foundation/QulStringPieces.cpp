// The part of QulString that takes texts apart: pieces and trimming.
#include "foundation/QulString.h"

#include "foundation/FatalEnd.h"

#include <stddef.h>

#include <memory>

namespace {

// Copies up to count characters, fewer if the text ends before. In size_t, a count of -1 asks for
// an array of no elements and fails in the copy; a lower one is more than new can give.
QulString CopyPiece(const wchar_t* text, int count)
{
  const size_t size = static_cast<size_t>(count) + 1;
  const std::unique_ptr<wchar_t[]> piece(new wchar_t[size]);
  RequireFits(wcsncpy_s(piece.get(), size, text, static_cast<size_t>(count)));
  piece[static_cast<size_t>(count)] = L'\0';
  return QulString(piece.get());
}

void CopyCharacters(const QulString& source, QulCharArray& characters)
{
  for (const wchar_t* p = source.Text(); *p != L'\0'; ++p)
    characters.Append(*p);
}

bool Contains(const QulCharArray& set, wchar_t character)
{
  for (int i = 0; i < set.count; ++i) {
    if (set.data[i] == character)
      return true;
  }
  return false;
}

}  // namespace

QulString QulString::Left(int count) const
{
  if (count < 0)
    return QulString();
  if (count >= Length())
    return *this;
  return CopyPiece(repr->text, count);
}

QulString QulString::Right(int count) const
{
  if (count < 0)
    return QulString();
  const int length = Length();
  if (count >= length)
    return *this;
  return CopyPiece(repr->text + (length - count), count);
}

QulString QulString::Mid(int start, int count) const
{
  const int rest = Length() - start;
  return CopyPiece(repr->text + start, count < rest ? count : rest);
}

QulString QulString::SubString(const QulString& source, int start, int count)
{
  if (start < 0 || start >= source.Length())
    Assign(L"");
  else
    Assign(CopyPiece(source.Text() + start, count));
  return *this;
}

QulString QulString::SubStringFrom(const QulString& source, int start)
{
  return SubString(source, start, start < 0 ? 0 : source.Length() - start);
}

void QulString::TrimLeft(const QulString& set)
{
  QulCharArray setCharacters;
  QulCharArray characters;
  CopyCharacters(set, setCharacters);
  CopyCharacters(*this, characters);
  if (characters.count == 0)
    return;

  int first = 0;
  while (first < characters.count && Contains(setCharacters, characters.data[first]))
    ++first;
  // No range, and so the empty string, if nothing remains.
  Assign(FromCharRange(characters, first, characters.count - 1));
}

void QulString::TrimRight(const QulString& set)
{
  QulCharArray setCharacters;
  QulCharArray characters;
  CopyCharacters(set, setCharacters);
  CopyCharacters(*this, characters);
  if (characters.count == 0)
    return;

  int last = characters.count - 1;
  while (last >= 0 && Contains(setCharacters, characters.data[last]))
    --last;
  Assign(FromCharRange(characters, 0, last));
}

QulString QulString::FromCharRange(const QulCharArray& characters, int first, int last)
{
  if (characters.count == 0)
    return QulString(static_cast<QulStringRepr*>(nullptr));
  QulString result;
  if (first > last || first >= characters.count || last >= characters.count)
    return result;

  QulString text;
  for (int i = first; i <= last; ++i)
    text.Format(L"%s%c", text.Text(), characters.data[i]);
  result.Assign(text);
  return result;
}
