// Pieces of texts and trimming.
#include "foundation/QulString.h"

#include "tests/unit/foundation/Texts.h"

#include <gtest/gtest.h>

#include <limits.h>

namespace {

QulCharArray CharactersOf(const QulString& text)
{
  QulCharArray characters;
  for (int i = 0; i < text.Length(); ++i)
    characters.Append(text.Text()[i]);
  return characters;
}

struct PieceCase
{
  const char* text;
  int start;
  int count;
  const char* piece;
};

struct TrimCase
{
  const char* text;
  const char* left;   // after TrimLeft
  const char* right;  // after TrimRight
};

}  // namespace

TEST(StringLeft, GivesTheFirstCharacters)
{
  const QulString text(L"abc");
  EXPECT_EQ("", TextOf(text.Left(-1)));
  EXPECT_EQ("", TextOf(text.Left(0)));
  EXPECT_EQ("a", TextOf(text.Left(1)));
  EXPECT_EQ("ab", TextOf(text.Left(2)));
  EXPECT_EQ("abc", TextOf(text.Left(3)));
  EXPECT_EQ("abc", TextOf(text.Left(4)));
}

TEST(StringRight, GivesTheLastCharacters)
{
  const QulString text(L"abc");
  EXPECT_EQ("", TextOf(text.Right(-1)));
  EXPECT_EQ("", TextOf(text.Right(0)));
  EXPECT_EQ("c", TextOf(text.Right(1)));
  EXPECT_EQ("bc", TextOf(text.Right(2)));
  EXPECT_EQ("abc", TextOf(text.Right(3)));
  EXPECT_EQ("abc", TextOf(text.Right(4)));
}

TEST(StringLeft, ACountOfTheLengthOrMoreSharesTheText)
{
  const QulString text(L"abc");
  const QulString whole = text.Left(3);
  const QulString more = text.Left(100);
  EXPECT_EQ(text.repr, whole.repr);
  EXPECT_EQ(text.repr, more.repr);
  EXPECT_EQ(3, text.repr->refCount);
}

TEST(StringRight, ACountOfTheLengthOrMoreSharesTheText)
{
  const QulString text(L"abc");
  const QulString whole = text.Right(3);
  const QulString more = text.Right(100);
  EXPECT_EQ(text.repr, whole.repr);
  EXPECT_EQ(text.repr, more.repr);
  EXPECT_EQ(3, text.repr->refCount);
}

TEST(StringLeft, AShorterPieceIsATextOfItsOwnAndTheSourceStays)
{
  QulString text(L"abc");
  GiveNarrow(text);
  const QulString left = text.Left(2);
  const QulString right = text.Right(2);
  EXPECT_NE(text.repr, left.repr);
  EXPECT_EQ(1, left.repr->refCount);
  EXPECT_EQ(1, right.repr->refCount);
  EXPECT_EQ(1, text.repr->refCount);
  EXPECT_EQ("abc", TextOf(text));
  EXPECT_STREQ("n", text.narrow);
}

TEST(StringLeft, NoCharactersAreTheSharedEmptyText)
{
  const QulString text(L"abc");
  EXPECT_EQ(QulStringEmptyRepr, text.Left(0).repr);
  EXPECT_EQ(QulStringEmptyRepr, text.Left(-1).repr);
  EXPECT_EQ(QulStringEmptyRepr, text.Right(0).repr);
  EXPECT_EQ(QulStringEmptyRepr, text.Right(-1).repr);
  EXPECT_EQ(QulStringEmptyRepr, QulString().Left(5).repr);
  EXPECT_EQ(QulStringEmptyRepr, QulString().Right(5).repr);
}

TEST(StringMid, GivesUpToCountCharactersFromTheStart)
{
  const PieceCase cases[] = {{"abcdef", 0, 2, "ab"}, {"abcdef", 2, 3, "cde"},
                             {"abcdef", 5, 1, "f"},  {"abcdef", 4, 2, "ef"},
                             {"abcdef", 4, 3, "ef"}, {"abcdef", 0, 2147483647, "abcdef"},
                             {"abcdef", 2, 0, ""},   {"abcdef", 6, 0, ""},
                             {"abcdef", 6, 100, ""}, {"", 0, 3, ""}};
  for (const PieceCase& c : cases)
    EXPECT_EQ(c.piece, TextOf(Handle(c.text).Mid(c.start, c.count))) << c.start << " " << c.count;
}

TEST(StringMid, OfTheWholeTextIsACopyAllTheSame)
{
  const QulString text(L"abc");
  const QulString piece = text.Mid(0, 3);
  EXPECT_NE(text.repr, piece.repr);
  EXPECT_EQ(1, text.repr->refCount);
}

TEST(StringSubString, GivesThePieceToTheDestinationAndToTheResult)
{
  const QulString source(L"abcdef");
  QulString destination(L"old");
  const QulString result = destination.SubString(source, 1, 3);
  EXPECT_EQ("bcd", TextOf(destination));
  EXPECT_EQ(destination.repr, result.repr);
  EXPECT_EQ(2, result.repr->refCount);
  EXPECT_EQ("abcdef", TextOf(source));
  EXPECT_EQ(1, source.repr->refCount);
}

TEST(StringSubString, StopsAtTheEndOfTheSource)
{
  const PieceCase cases[] = {{"abcdef", 0, 6, "abcdef"}, {"abcdef", 4, 100, "ef"},
                             {"abcdef", 5, 2, "f"},      {"abcdef", 0, 0, ""},
                             {"abcdef", 6, 1, ""},       {"abcdef", 7, 1, ""},
                             {"abcdef", -1, 2, ""},      {"", 0, 1, ""}};
  for (const PieceCase& c : cases) {
    QulString destination(L"old");
    const QulString result = destination.SubString(Handle(c.text), c.start, c.count);
    EXPECT_EQ(c.piece, TextOf(destination)) << c.start << " " << c.count;
    EXPECT_EQ(c.piece, TextOf(result)) << c.start << " " << c.count;
  }
}

TEST(StringSubString, WithoutCharactersBothHandlesAreTheSharedEmptyText)
{
  QulString destination(L"old");
  const QulString result = destination.SubString(L"abc", 3, 1);
  EXPECT_EQ(QulStringEmptyRepr, destination.repr);
  EXPECT_EQ(QulStringEmptyRepr, result.repr);
}

TEST(StringSubString, ANegativeStartIsNoMatterWhateverTheCount)
{
  QulString destination(L"old");
  (void)destination.SubString(L"abc", -1, -5);
  EXPECT_EQ("", TextOf(destination));
  (void)destination.SubString(L"abc", 3, -5);
  EXPECT_EQ("", TextOf(destination));
}

TEST(StringSubString, TheSourceMayBeTheDestination)
{
  QulString text(L"abcdef");
  (void)text.SubString(text, 2, 2);
  EXPECT_EQ("cd", TextOf(text));
  (void)text.SubStringFrom(text, 1);
  EXPECT_EQ("d", TextOf(text));
}

TEST(StringSubStringFrom, GivesTheRestOfTheSource)
{
  const struct
  {
    int start;
    const char* rest;
  } cases[] = {{0, "abc"}, {1, "bc"}, {2, "c"}, {3, ""}, {4, ""}, {-1, ""}, {INT_MIN, ""}};
  for (const auto& c : cases) {
    QulString destination(L"old");
    const QulString result = destination.SubStringFrom(L"abc", c.start);
    EXPECT_EQ(c.rest, TextOf(destination)) << c.start;
    EXPECT_EQ(destination.repr, result.repr) << c.start;
  }
}

TEST(StringTrim, TheDefaultSetIsTabLineFeedAndSpace)
{
  const TrimCase cases[] = {
      {"abc", "abc", "abc"},
      {" abc ", "abc ", " abc"},
      {"\t\n abc\t\n ", "abc\t\n ", "\t\n abc"},
      {"a b", "a b", "a b"},
      {" \n\t", "", ""},
      {"   ", "", ""},
      {"\vabc\f", "\vabc\f", "\vabc\f"},
      {"\xC2\xA0z\xC2\xA0", "\xC2\xA0z\xC2\xA0", "\xC2\xA0z\xC2\xA0"},  // no-break spaces
      {"", "", ""},
  };
  for (const TrimCase& c : cases) {
    QulString left = Handle(c.text);
    QulString right = Handle(c.text);
    left.TrimLeft();
    right.TrimRight();
    EXPECT_EQ(c.left, TextOf(left)) << c.text;
    EXPECT_EQ(c.right, TextOf(right)) << c.text;
  }
}

TEST(StringTrim, ALeadingCarriageReturnStopsTheTrimmingOfTheLeft)
{
  QulString text(L"\r\n abc");
  text.TrimLeft();
  EXPECT_EQ("\r\n abc", TextOf(text));
}

TEST(StringTrim, ATrailingCarriageReturnSurvivesWhileTheLineFeedGoes)
{
  QulString text(L"abc\r\n");
  text.TrimRight();
  EXPECT_EQ("abc\r", TextOf(text));
}

TEST(StringTrim, AGivenSetTakesTheDefaultSetsPlace)
{
  const TrimCase cases[] = {{"xyaxbyx", "axbyx", "xyaxb"},
                            {" xa x ", " xa x ", " xa x "},
                            {"XaX", "XaX", "XaX"},
                            {"xyxy", "", ""}};
  for (const TrimCase& c : cases) {
    QulString left = Handle(c.text);
    QulString right = Handle(c.text);
    left.TrimLeft(L"xy");
    right.TrimRight(L"xy");
    EXPECT_EQ(c.left, TextOf(left)) << c.text;
    EXPECT_EQ(c.right, TextOf(right)) << c.text;
  }
}

TEST(StringTrim, AnEmptySetTrimsNothing)
{
  QulString text(L" a ");
  text.TrimLeft(L"");
  text.TrimRight(L"");
  EXPECT_EQ(" a ", TextOf(text));
}

TEST(StringTrim, TheSetMayBeTheTextItself)
{
  QulString left(L"abc");
  QulString right(L"abc");
  left.TrimLeft(left);
  right.TrimRight(right);
  EXPECT_EQ(QulStringEmptyRepr, left.repr);
  EXPECT_EQ(QulStringEmptyRepr, right.repr);
}

TEST(StringTrim, ATextThatLosesNothingIsRebuilt)
{
  QulString left(L"abc");
  QulString right(left);
  const QulString before(left);
  left.TrimLeft();
  right.TrimRight();
  EXPECT_NE(before.repr, left.repr);
  EXPECT_NE(before.repr, right.repr);
  EXPECT_EQ(1, before.repr->refCount);
}

TEST(StringTrim, AnEmptyTextIsLeftAlone)
{
  QulString text;
  GiveNarrow(text);
  const int32_t before = QulStringEmptyRepr->refCount;
  text.TrimLeft();
  text.TrimRight();
  EXPECT_EQ(QulStringEmptyRepr, text.repr);
  EXPECT_EQ(before, QulStringEmptyRepr->refCount);
  EXPECT_STREQ("n", text.narrow);
}

TEST(StringTrim, PassesThroughTheWideScratch)
{
  QulString text(L"  abc");
  text.TrimLeft();
  EXPECT_EQ("abc", Utf8(QulWideScratch));
}

TEST(StringFromCharRange, TakesBothEndsOfTheRange)
{
  const QulCharArray characters = CharactersOf(Handle("aböde"));
  const struct
  {
    int first;
    int last;
    const char* text;
  } cases[] = {{0, 4, "aböde"}, {1, 3, "böd"}, {2, 2, "ö"}, {4, 4, "e"},
               {3, 2, ""},      {0, 5, ""},    {5, 5, ""},  {5, 4, ""}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.text, TextOf(QulString::FromCharRange(characters, c.first, c.last)))
        << c.first << " to " << c.last;
  }
}

TEST(StringFromCharRange, ARangeThatIsNoneGivesTheSharedEmptyText)
{
  const QulCharArray characters = CharactersOf(L"abc");
  EXPECT_EQ(QulStringEmptyRepr, QulString::FromCharRange(characters, 0, 3).repr);
}

TEST(StringFromCharRange, AnEmptyArrayGivesAHandleWithoutATextThatCanBeReleased)
{
  const QulCharArray none;
  QulCharArray cleared = CharactersOf(L"abc");
  cleared.Clear();
  const QulString fromNone = QulString::FromCharRange(none, 0, 0);
  const QulString fromCleared = QulString::FromCharRange(cleared, 0, 0);
  EXPECT_EQ(nullptr, fromNone.repr);
  EXPECT_EQ(nullptr, fromNone.narrow);
  EXPECT_EQ(nullptr, fromCleared.repr);
}

TEST(StringFromCharRange, CountsTheElementsInUseAndNotTheCapacity)
{
  QulCharArray characters = CharactersOf(L"abcdef");
  characters.SetCount(3);
  EXPECT_EQ("abc", TextOf(QulString::FromCharRange(characters, 0, 2)));
  EXPECT_EQ("", TextOf(QulString::FromCharRange(characters, 0, 3)));
}
