// The longest texts, and the end of the process when one doesn't fit.
#include "foundation/QulString.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/unit/foundation/Texts.h"

#include <gtest/gtest.h>

#include <errno.h>

namespace {

constexpr int Longest = 524287;

const auto EndedAbnormally = testing::ExitedWithCode(3);
const char* const OnlyTheEnd = "^TerminateProcess 0xC0000417\n$";

// One composition that passes through the named call as the n-th of its kind, counted from the
// moment in which the failure is ordered.
struct CheckedCall
{
  const char* function;
  int n;
  void (*compose)(QulString& text);
};

const CheckedCall CheckedCalls[] = {
    {"wcscpy_s", 1, [](QulString&) { const QulString copy(L"abc"); }},
    {"wcscpy_s", 1, [](QulString& text) { text.Assign(L"abc"); }},
    {"wcscpy_s", 1, [](QulString& text) { text.AssignNarrow("abc"); }},
    {"wcscpy_s", 1, [](QulString& text) { (void)QulString::Concat(text, text); }},
    {"wcscpy_s", 2, [](QulString& text) { (void)QulString::Concat(text, text); }},
    {"wcscat_s", 1, [](QulString& text) { (void)QulString::Concat(text, text); }},
    {"wcscat_s", 1, [](QulString& text) { text.Append(text); }},
    {"vswprintf_s", 1, [](QulString& text) { text.Format(L"%s", L"abc"); }},
    {"vsprintf_s", 1, [](QulString& text) { text.FormatNarrow("%s", "abc"); }},
    {"wcsncat_s", 1, [](QulString& text) { (void)text.Replace(L"b", L"x"); }},
    {"wcscat_s", 1, [](QulString& text) { (void)text.Replace(L"b", L"x"); }},
    {"wcsncat_s", 2, [](QulString& text) { (void)text.Replace(L"b", L"x"); }},
    {"wcsncpy_s", 1, [](QulString& text) { (void)text.Left(1); }},
    {"wcsncpy_s", 1, [](QulString& text) { (void)text.Right(1); }},
    {"wcsncpy_s", 1, [](QulString& text) { (void)text.Mid(1, 1); }},
    {"wcsncpy_s", 1, [](QulString& text) { (void)text.SubString(text, 1, 1); }},
    {"vswprintf_s", 2, [](QulString& text) { text.TrimLeft(); }},
    {"vswprintf_s", 3, [](QulString& text) { text.TrimRight(); }},
};

void ReplaceInLongText(int length, const wchar_t* replacement)
{
  QulString text = LongText(length - 1) + QulString(L"y");
  (void)text.Replace(L"y", replacement);
}

}  // namespace

TEST(StringLimitDeathTest, EveryCheckedCallThatFailsEndsTheProcess)
{
  int number = 0;
  for (const CheckedCall& call : CheckedCalls) {
    EXPECT_EXIT(
        {
          QulString text(L"abc");
          FailCall(call.function, call.n, ERANGE);
          call.compose(text);
        },
        EndedAbnormally, OnlyTheEnd)
        << "composition " << number << ", " << call.function;
    ++number;
  }
}

TEST(StringLimit, ConcatHoldsTheLongestText)
{
  EXPECT_EQ(Longest, (LongText(Longest - 1) + L"x").Length());
  EXPECT_EQ(Longest, (LongText(Longest) + L"").Length());
  EXPECT_EQ(Longest, (QulString() + LongText(Longest)).Length());
}

TEST(StringLimitDeathTest, ConcatOfOneCharacterMoreEndsTheProcess)
{
  const QulString longest = LongText(Longest);
  const QulString tooLong = LongText(Longest + 1);
  EXPECT_EXIT((void)(longest + L"x"), EndedAbnormally, OnlyTheEnd);
  EXPECT_EXIT((void)(tooLong + L""), EndedAbnormally, OnlyTheEnd);
  EXPECT_EXIT((void)(QulString() + tooLong), EndedAbnormally, OnlyTheEnd);
}

TEST(StringLimitDeathTest, AppendBeyondTheLimitEndsTheProcess)
{
  QulString text = LongText(Longest - 1);
  text.Append(L"x");
  EXPECT_EQ(Longest, text.Length());
  EXPECT_EXIT(text.Append(L"x"), EndedAbnormally, OnlyTheEnd);
}

TEST(StringLimitDeathTest, FormatHoldsTheLongestTextAndNoMore)
{
  const QulString source = LongText(Longest);
  QulString text;
  text.Format(L"%s", source.Text());
  EXPECT_EQ(Longest, text.Length());
  EXPECT_EXIT(text.Format(L"%s%c", source.Text(), L'x'), EndedAbnormally, OnlyTheEnd);
}

TEST(StringLimitDeathTest, FormatNarrowHoldsTheLongestTextAndNoMore)
{
  const std::string source(Longest, 'x');
  QulString text;
  text.FormatNarrow("%s", source.c_str());
  EXPECT_EQ(Longest, text.Length());
  EXPECT_EXIT(text.FormatNarrow("%s%c", source.c_str(), 'x'), EndedAbnormally, OnlyTheEnd);
}

TEST(StringLimit, ReplaceHoldsTheLongestText)
{
  QulString text = LongText(Longest - 2) + QulString(L"y");
  EXPECT_EQ(1, text.Replace(L"y", L"zz"));
  EXPECT_EQ(Longest, text.Length());
}

TEST(StringLimitDeathTest, ReplaceEndsTheProcessWhicheverPieceDoesNotFit)
{
  const QulString tooLong = LongText(Longest + 1);
  QulString longHead = tooLong;
  EXPECT_EXIT((void)longHead.Replace(L"y", L""), EndedAbnormally, OnlyTheEnd);
  EXPECT_EXIT(ReplaceInLongText(Longest, L"zz"), EndedAbnormally, OnlyTheEnd);
  QulString longTail = QulString(L"y") + LongText(Longest - 1);
  EXPECT_EXIT((void)longTail.Replace(L"y", L"zz"), EndedAbnormally, OnlyTheEnd);
}

TEST(StringLimitDeathTest, ACountOfMinusOneEndsTheProcess)
{
  const QulString text(L"abc");
  QulString target;
  EXPECT_EXIT((void)text.Mid(1, -1), EndedAbnormally, OnlyTheEnd);
  EXPECT_EXIT((void)target.SubString(text, 1, -1), EndedAbnormally, OnlyTheEnd);
}
