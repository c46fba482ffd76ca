// Handles and the texts that they share; length, comparison and search.
#include "foundation/QulString.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/unit/foundation/Texts.h"

#include <gtest/gtest.h>

#include <malloc.h>
#include <stdint.h>

#include <type_traits>

namespace {

const wchar_t* const NoWide = nullptr;
const char* const NoNarrow = nullptr;

class StringConversion : public PlatformTest
{
};

// Under AddressSanitizer this is the size that was asked for, to the byte.
size_t AllocatedBytes(const wchar_t* memory)
{
  return malloc_usable_size(const_cast<wchar_t*>(memory));
}

int32_t EmptyCount()
{
  return QulStringEmptyRepr->refCount;
}

}  // namespace

TEST(StringLayout, AHandleIsTwoWordsAndATextHasOneVirtualDestructor)
{
  EXPECT_EQ(2 * sizeof(void*), sizeof(QulString));
  EXPECT_FALSE(std::is_polymorphic_v<QulString>);
  EXPECT_TRUE(std::has_virtual_destructor_v<QulStringRepr>);
  EXPECT_TRUE((std::is_same_v<int32_t, decltype(QulStringRepr::refCount)>));
}

TEST(StringLayout, TheArrayOfATextIsAsLongAsTheTextAndItsTerminator)
{
  for (const int length : {1, 2, 7, 8, 500}) {
    const QulString text = LongText(length);
    EXPECT_EQ(static_cast<size_t>(length + 1) * 2, AllocatedBytes(text.Text()));
  }
}

TEST(StringLayout, TheScratchBuffersHoldTheLimit)
{
  EXPECT_EQ(0x80000, QulStringLimit);
  EXPECT_GE(AllocatedBytes(QulWideScratch), 1048576U);
  EXPECT_GE(malloc_usable_size(QulNarrowScratch), 524288U);
}

TEST(StringLayout, TheSharedEmptyTextIsTheTerminatorAlone)
{
  EXPECT_EQ(2U, AllocatedBytes(QulStringEmptyRepr->text));
  EXPECT_EQ(L'\0', QulStringEmptyRepr->text[0]);
}

TEST(EmptyString, EverySourceWithoutTextGivesTheSameHandle)
{
  const QulString handles[] = {QulString(),          QulString(NoWide),   QulString(L""),
                               QulString(""),        QulString(NoNarrow), QulString(L"\0behind"),
                               QulString("\0behind")};
  for (const QulString& handle : handles) {
    EXPECT_EQ(QulStringEmptyRepr, handle.repr);
    EXPECT_EQ(nullptr, handle.narrow);
    EXPECT_EQ(0, handle.Length());
  }
}

TEST(EmptyString, ConstructionAndReleaseCountNothing)
{
  const int32_t before = EmptyCount();
  {
    const QulString empty;
    const QulString fromWide(NoWide);
    const QulString fromNarrow("");
    EXPECT_EQ(before, EmptyCount());
  }
  EXPECT_EQ(before, EmptyCount());
}

TEST(EmptyString, CopiesCountUpAndTheirReleaseDoesNotCountDown)
{
  const QulString empty;
  const int32_t before = EmptyCount();
  for (int i = 0; i < 100; ++i) {
    const QulString copy(empty);
    EXPECT_EQ(QulStringEmptyRepr, copy.repr);
  }
  EXPECT_EQ(before + 100, EmptyCount());
}

TEST(EmptyString, TheSharedTextOutlivesAnyCount)
{
  const int32_t before = EmptyCount();
  QulStringEmptyRepr->refCount = 0;
  {
    const QulString one;
    QulString other(L"abc");
    other.Assign(one);
  }
  EXPECT_EQ(1, EmptyCount());
  EXPECT_EQ(L'\0', QulStringEmptyRepr->text[0]);
  QulStringEmptyRepr->refCount = before;
}

TEST(EmptyString, AssignmentOfAnEmptyHandleCountsUpAndThatOfAnEmptyLiteralDoesNot)
{
  QulString first(L"a");
  QulString second(L"b");
  const int32_t before = EmptyCount();
  first.Assign(QulString());
  EXPECT_EQ(before + 1, EmptyCount());
  second.Assign(L"");
  EXPECT_EQ(before + 1, EmptyCount());
  EXPECT_EQ(QulStringEmptyRepr, first.repr);
  EXPECT_EQ(QulStringEmptyRepr, second.repr);
}

TEST(StringSharing, ANewTextHasOneHandle)
{
  const QulString text(L"abc");
  EXPECT_EQ(1, text.repr->refCount);
  EXPECT_EQ(nullptr, text.narrow);
  EXPECT_EQ("abc", TextOf(text));
}

TEST(StringSharing, TheTextIsCopiedFromItsSource)
{
  wchar_t source[] = L"abc";
  const QulString text(source);
  source[0] = L'X';
  EXPECT_EQ("abc", TextOf(text));
}

TEST(StringSharing, ACopySharesTheTextUntilItGoes)
{
  const QulString text(L"abc");
  {
    const QulString copy(text);
    EXPECT_EQ(text.repr, copy.repr);
    EXPECT_EQ(2, text.repr->refCount);
  }
  EXPECT_EQ(1, text.repr->refCount);
}

TEST(StringSharing, ACopyHasNoNarrowCopy)
{
  QulString text(L"abc");
  GiveNarrow(text);
  const QulString copy(text);
  QulString assigned;
  assigned.Assign(text);
  EXPECT_EQ(nullptr, copy.narrow);
  EXPECT_EQ(nullptr, assigned.narrow);
  EXPECT_STREQ("n", text.narrow);
}

TEST(StringSharing, TheTextLivesOnInTheLastHandle)
{
  QulString keeper;
  {
    const QulString text(L"abc");
    keeper = text;
  }
  EXPECT_EQ(1, keeper.repr->refCount);
  EXPECT_EQ("abc", TextOf(keeper));
}

TEST(StringSharing, AChangeOfOneHandleLeavesTheTextOfTheOthers)
{
  QulString changed(L"aXa");
  const QulString other(changed);
  const QulStringRepr* shared = other.repr;
  changed.Append(L"b");
  changed.Assign(other).Replace(L"X", L"Y");
  changed.Assign(other).TrimLeft(L"a");
  changed.Assign(other).Format(L"%s!", changed.Text());
  EXPECT_EQ(shared, other.repr);
  EXPECT_EQ(1, other.repr->refCount);
  EXPECT_EQ("aXa", TextOf(other));
}

TEST(StringAssign, AnotherHandleTakesOverItsText)
{
  QulString target(L"old");
  const QulString old(target);
  const QulString source(L"new");
  EXPECT_EQ(&target, &target.Assign(source));
  EXPECT_EQ(source.repr, target.repr);
  EXPECT_EQ(2, source.repr->refCount);
  EXPECT_EQ(1, old.repr->refCount);
}

TEST(StringAssign, ToAHandleThatSharesTheTextNothingHappens)
{
  const QulString source(L"abc");
  QulString target(source);
  GiveNarrow(target);
  const char* narrow = target.narrow;
  EXPECT_EQ(&target, &target.Assign(source));
  EXPECT_EQ(2, source.repr->refCount);
  EXPECT_EQ(narrow, target.narrow);
}

TEST(StringAssign, ToItselfNothingHappens)
{
  QulString text(L"abc");
  const QulString& self = text;
  text = self;
  EXPECT_EQ(1, text.repr->refCount);
  EXPECT_EQ("abc", TextOf(text));
}

TEST(StringAssign, AnEmptyHandleToAnEmptyOneKeepsTheNarrowCopy)
{
  QulString text;
  GiveNarrow(text);
  const int32_t before = EmptyCount();
  text.Assign(QulString());
  EXPECT_EQ(before, EmptyCount());
  EXPECT_STREQ("n", text.narrow);
}

TEST(StringAssign, WideTextGetsAnOwnCopy)
{
  QulString target(L"old");
  const QulString source(L"new");
  EXPECT_EQ(&target, &target.Assign(source.Text()));
  EXPECT_NE(source.repr, target.repr);
  EXPECT_EQ(1, target.repr->refCount);
  EXPECT_EQ(1, source.repr->refCount);
  EXPECT_EQ("new", TextOf(target));
}

TEST(StringAssign, NullAndEmptyTextGiveTheSharedEmptyOne)
{
  QulString targets[] = {QulString(L"a"), QulString(L"b"), QulString(L"c"), QulString(L"d")};
  targets[0].Assign(NoWide);
  targets[1].Assign(L"");
  targets[2].AssignNarrow(NoNarrow);
  targets[3].AssignNarrow("");
  for (const QulString& target : targets)
    EXPECT_EQ(QulStringEmptyRepr, target.repr);
}

TEST(StringAssign, TheTextMayLieInTheWideScratch)
{
  QulString target(L"old");
  (void)(QulString(L"ab") + QulString(L"cd"));
  target.Assign(QulWideScratch + 1);
  EXPECT_EQ("bcd", TextOf(target));
}

TEST(StringAssign, EveryNewTextDropsTheNarrowCopy)
{
  using Change = void (*)(QulString&);
  const Change changes[] = {
      [](QulString& text) { text.Assign(QulString(L"b")); },
      [](QulString& text) { text.Assign(L"b"); },
      [](QulString& text) { text.Assign(L""); },
      [](QulString& text) { text.AssignNarrow("b"); },
      [](QulString& text) { text.AssignNarrow(nullptr); },
      [](QulString& text) { text.Append(L"b"); },
      [](QulString& text) { text.Format(L"b"); },
      [](QulString& text) { text.FormatNarrow("b"); },
      [](QulString& text) { text.Replace(L"z", L"b"); },
      [](QulString& text) { text.TrimLeft(); },
      [](QulString& text) { text.TrimRight(); },
      [](QulString& text) { text.SubString(L"source", 1, 2); },
  };
  int number = 0;
  for (const Change change : changes) {
    QulString text(L"abc");
    GiveNarrow(text);
    change(text);
    EXPECT_EQ(nullptr, text.narrow) << "change " << number;
    ++number;
  }
}

TEST_F(StringConversion, GoesThroughTheWideScratchInTheAnsiCodePage)
{
  const QulString text("abc");
  EXPECT_EQ(std::vector<std::string>{"MultiByteToWideChar(0, 0x0, \"abc\", -1, 524288) = 4"},
            Diary());
  EXPECT_EQ("abc", Utf8(QulWideScratch));
  EXPECT_EQ("abc", TextOf(text));
}

TEST_F(StringConversion, EveryRoadFromNarrowTextIsTheSame)
{
  QulString text;
  text.AssignNarrow("abc");
  text.FormatNarrow("%s", "de");
  const std::vector<std::string> expected = {"MultiByteToWideChar(0, 0x0, \"abc\", -1, 524288) = 4",
                                             "MultiByteToWideChar(0, 0x0, \"de\", -1, 524288) = 3"};
  EXPECT_EQ(expected, Diary());
  EXPECT_EQ("de", TextOf(text));
}

TEST_F(StringConversion, CharactersBeyondAsciiAreThoseOfTheCodePage)
{
  const QulString text("K\xF6ln \x80");
  EXPECT_EQ("Köln €", TextOf(text));
  EXPECT_EQ(6, text.Length());
}

TEST_F(StringConversion, TextWithoutCharactersIsNotConverted)
{
  QulString text(NoNarrow);
  text.AssignNarrow("");
  text.AssignNarrow(nullptr);
  EXPECT_TRUE(Diary().empty());
}

TEST_F(StringConversion, AFailedCallGivesTheEmptyStringAndNotWhatTheScratchHeld)
{
  QulString text;
  text.Format(L"%s", L"left behind");
  FailCall("MultiByteToWideChar", 1, 1113);
  text.AssignNarrow("abc");
  EXPECT_EQ(QulStringEmptyRepr, text.repr);
}

TEST_F(StringConversion, TheLongestTextFitsTheScratch)
{
  const std::string source(524287, 'x');
  const QulString text(source.c_str());
  EXPECT_EQ(524287, text.Length());
}

TEST_F(StringConversion, TextTooLongForTheScratchStaysAsTheCallLeavesIt)
{
  const std::string source(600000, 'x');
  const QulString text(source.c_str());
  EXPECT_EQ(524288, text.Length());
  EXPECT_EQ(std::string(524288, 'x'), TextOf(text));
}

TEST_F(StringConversion, IsDoneBeforeTheOldTextAndItsNarrowCopyAreLetGo)
{
  QulString text(L"old");
  GiveNarrow(text);
  text.AssignNarrow(text.narrow);
  EXPECT_EQ("n", TextOf(text));
  EXPECT_EQ(nullptr, text.narrow);
  EXPECT_EQ(1, text.repr->refCount);
}

TEST(StringLength, CountsCharactersOf16Bits)
{
  EXPECT_EQ(0, QulString().Length());
  EXPECT_EQ(3, Handle("aäb").Length());
  EXPECT_EQ(4, Handle("a😀b").Length());
  EXPECT_EQ(2, QulString(L"ab\0cd").Length());
}

TEST(StringLength, OfAWideSourceHasNoLimit)
{
  EXPECT_EQ(600000, LongText(600000).Length());
}

TEST(StringCompare, HasNoRegardToCase)
{
  EXPECT_TRUE(QulString(L"KFVersion").EqualsNoCase(L"kfVERSION"));
  EXPECT_TRUE(QulString().EqualsNoCase(L""));
  EXPECT_FALSE(QulString(L"abc").EqualsNoCase(L"ab"));
  EXPECT_FALSE(QulString(L"ab").EqualsNoCase(L"abc"));
  EXPECT_FALSE(QulString(L"abc").EqualsNoCase(L"abd"));
  EXPECT_FALSE(QulString(L"a@").EqualsNoCase(L"a`"));
}

TEST(StringFind, GivesTheFirstMatchWithRegardToCase)
{
  const struct
  {
    const char* text;
    const char* needle;
    int index;
  } cases[] = {{"abcabc", "abc", 0}, {"abcabc", "bc", 1}, {"abcabc", "ca", 2},
               {"abcabc", "BC", -1}, {"abc", "abcd", -1}, {"aab", "ab", 1},
               {"abc", "", 0},       {"", "a", -1},       {"", "", -1}};
  for (const auto& c : cases)
    EXPECT_EQ(c.index, Handle(c.text).Find(Handle(c.needle))) << c.text << " " << c.needle;
}

TEST(StringFind, FromAStartCountsFromTheBeginningOfTheString)
{
  const struct
  {
    const char* text;
    const char* needle;
    int start;
    int index;
  } cases[] = {{"abcabc", "abc", 0, 0}, {"abcabc", "abc", 1, 3}, {"abcabc", "c", 3, 5},
               {"abcabc", "ab", 4, -1}, {"abcabc", "c", 5, 5},   {"abcabc", "c", 6, -1},
               {"abcabc", "c", 7, -1},  {"abcabc", "a", -1, -1}, {"abcabc", "B", 0, -1},
               {"abcabc", "", 4, 4},    {"abcabc", "", 6, -1},   {"", "", 0, -1},
               {"", "a", 0, -1},        {"abc", "", -1, -1}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.index, Handle(c.text).Find(Handle(c.needle), c.start))
        << c.text << " " << c.needle << " from " << c.start;
  }
}
