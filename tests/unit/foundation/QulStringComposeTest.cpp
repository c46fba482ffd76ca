// Composed texts: joining, printf, replacement.
#include "foundation/QulString.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/unit/foundation/Texts.h"

#include <gtest/gtest.h>

TEST(StringConcat, JoinsTwoTextsIntoANewOne)
{
  const QulString left(L"abc");
  const QulString right(L"de");
  const QulString joined = left + right;
  EXPECT_EQ("abcde", TextOf(joined));
  EXPECT_EQ(1, joined.repr->refCount);
  EXPECT_EQ("abc", TextOf(left));
  EXPECT_EQ("de", TextOf(right));
}

TEST(StringConcat, CopiesEvenIfOneSideIsEmpty)
{
  const QulString text(L"abc");
  const QulString left = text + L"";
  const QulString right = QulString() + text;
  EXPECT_EQ("abc", TextOf(left));
  EXPECT_EQ("abc", TextOf(right));
  EXPECT_NE(text.repr, left.repr);
  EXPECT_NE(text.repr, right.repr);
  EXPECT_EQ(1, text.repr->refCount);
}

TEST(StringConcat, OfTwoEmptyTextsIsTheSharedEmptyOne)
{
  EXPECT_EQ(QulStringEmptyRepr, (QulString() + L"").repr);
}

TEST(StringConcat, IsComposedInTheWideScratch)
{
  (void)QulString::Concat(L"ab", L"cd");
  EXPECT_EQ("abcd", Utf8(QulWideScratch));
}

TEST(StringAppend, RebuildsTheTextOfThisHandle)
{
  QulString text(L"ab");
  const QulString old(text);
  EXPECT_EQ(&text, &text.Append(L"cd"));
  EXPECT_EQ("abcd", TextOf(text));
  EXPECT_EQ(1, old.repr->refCount);
  EXPECT_EQ(1, text.repr->refCount);
}

TEST(StringAppend, OfTheHandleItselfDoublesTheText)
{
  QulString text(L"ab");
  text.Append(text);
  EXPECT_EQ("abab", TextOf(text));
}

TEST(StringAppend, OfAnEmptyTextCopiesAllTheSame)
{
  QulString text(L"ab");
  const QulString old(text);
  text.Append(L"");
  EXPECT_EQ("ab", TextOf(text));
  EXPECT_NE(old.repr, text.repr);
}

TEST(StringFormat, TakesWideTextsAndWideCharacters)
{
  QulString text;
  EXPECT_EQ(&text, &text.Format(L"%s-%c-%d", L"äöü", L'€', 42));
  EXPECT_EQ("äöü-€-42", TextOf(text));
  EXPECT_EQ("äöü-€-42", Utf8(QulWideScratch));
}

TEST(StringFormat, TheArgumentMayBeTheOwnText)
{
  QulString text(L"ab");
  text.Format(L"[%s][%s]", text.Text(), text.Text());
  EXPECT_EQ("[ab][ab]", TextOf(text));
}

TEST(StringFormat, AnEmptyResultIsTheSharedEmptyText)
{
  QulString text(L"ab");
  text.Format(L"%s", L"");
  EXPECT_EQ(QulStringEmptyRepr, text.repr);
}

TEST(StringFormat, TheHandleGetsATextOfItsOwn)
{
  QulString text(L"ab");
  const QulString old(text);
  text.Format(L"%s", old.Text());
  EXPECT_NE(old.repr, text.repr);
  EXPECT_EQ(1, old.repr->refCount);
}

TEST(StringFormatNarrow, TakesNarrowTextsAndComposesInTheNarrowScratch)
{
  QulString text;
  EXPECT_EQ(&text, &text.FormatNarrow("%s %d", "K\xF6ln", -7));
  EXPECT_EQ("Köln -7", TextOf(text));
  EXPECT_STREQ("K\xF6ln -7", QulNarrowScratch);
}

TEST(StringFormatNarrow, AnEmptyResultIsTheSharedEmptyText)
{
  QulString text(L"ab");
  text.FormatNarrow("%s", "");
  EXPECT_EQ(QulStringEmptyRepr, text.repr);
}

TEST(StringReplace, GoesFromLeftToRightWithoutOverlap)
{
  const struct
  {
    const char* text;
    const char* needle;
    const char* replacement;
    const char* result;
    int count;
  } cases[] = {
      {"aaa", "aa", "b", "ba", 1},
      {"aaaa", "aa", "b", "bb", 2},
      {"one two one", "one", "1", "1 two 1", 2},
      {"abc", "abc", "x", "x", 1},
      {"abc", "abc", "", "", 1},
      {"a.b.c", ".", "", "abc", 2},
      {"a'b", "'", "''", "a''b", 1},
      {"abc", "b", "bbb", "abbbc", 1},
      {"abab", "ab", "a", "aa", 2},
      {"abc", "x", "y", "abc", 0},
      {"abc", "B", "y", "abc", 0},
      {"ab", "abc", "y", "ab", 0},
      {"abc", "c", "ü€", "abü€", 1},
      {"", "a", "b", "", 0},
  };
  for (const auto& c : cases) {
    QulString text = Handle(c.text);
    EXPECT_EQ(c.count, text.Replace(Handle(c.needle), Handle(c.replacement))) << c.text;
    EXPECT_EQ(c.result, TextOf(text)) << c.text << " " << c.needle;
  }
}

TEST(StringReplace, WithAnEmptyNeedleLeavesTheHandleAlone)
{
  QulString text(L"abc");
  GiveNarrow(text);
  const QulStringRepr* before = text.repr;
  EXPECT_EQ(0, text.Replace(L"", L"x"));
  EXPECT_EQ(before, text.repr);
  EXPECT_STREQ("n", text.narrow);
}

TEST(StringReplace, WithoutAMatchTheHandleGetsANewCopyOfTheText)
{
  QulString text(L"abc");
  const QulString old(text);
  EXPECT_EQ(0, text.Replace(L"x", L"y"));
  EXPECT_EQ("abc", TextOf(text));
  EXPECT_NE(old.repr, text.repr);
  EXPECT_EQ(1, old.repr->refCount);
}

TEST(StringReplace, OfTheWholeTextByNothingGivesTheSharedEmptyText)
{
  QulString text(L"aa");
  EXPECT_EQ(2, text.Replace(L"a", L""));
  EXPECT_EQ(QulStringEmptyRepr, text.repr);
}

TEST(StringReplace, NeedleAndReplacementMayBeTheHandleItself)
{
  QulString text(L"ab");
  EXPECT_EQ(1, text.Replace(text, L"cd"));
  EXPECT_EQ("cd", TextOf(text));
  EXPECT_EQ(1, text.Replace(L"c", text));
  EXPECT_EQ("cdd", TextOf(text));
}

TEST(StringReplace, IsComposedInTheWideScratchWithoutWhatThatHeld)
{
  QulString text(L"abc");
  (void)(QulString(L"left") + L"behind");
  (void)text.Replace(L"b", L"x");
  EXPECT_EQ("axc", TextOf(text));
  EXPECT_EQ("axc", Utf8(QulWideScratch));
}
