// The checked printf functions, and wsprintfW.
#include "tests/contract/ContractTest.h"
#include "tests/contract/Disagreements.h"

#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <wchar.h>

namespace {

// A call and its poisoned buffer.
class FormatContract : public ContractTest
{
protected:
  int Wide(size_t size, const wchar_t* format, ...)
  {
    memset(wide, 0xBD, sizeof(wide));
    va_list arguments;
    va_start(arguments, format);
    const int result = vswprintf_s(wide, size, format, arguments);
    va_end(arguments);
    return result;
  }

  int Narrow(size_t size, const char* format, ...)
  {
    memset(narrow, 0xBD, sizeof(narrow));
    va_list arguments;
    va_start(arguments, format);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int result = vsprintf_s(narrow, size, format, arguments);
#pragma GCC diagnostic pop
    va_end(arguments);
    return result;
  }

  wchar_t wide[64];
  char narrow[64];
};

const wchar_t MessagePoison = static_cast<wchar_t>(0xBDBD);

// A buffer of wsprintfW that is longer than what it may write.
class MessageFormat : public ContractTest
{
protected:
  MessageFormat() { memset(message, 0xBD, sizeof(message)); }

  // A text of so many letters, which lives until the next call.
  const wchar_t* Letters(size_t count)
  {
    for (size_t i = 0; i < count; ++i)
      letters[i] = L'x';
    letters[count] = L'\0';
    return letters;
  }

  wchar_t message[1040];
  wchar_t letters[2048];
};

}  // namespace

TEST_F(FormatContract, TextInAWideFormatIsWideAndCapitalSIsNarrow)
{
  EXPECT_EQ(5, Wide(64, L"%s|%c|", L"a\x0161", L'\x20AC'));
  EXPECT_STREQ(L"a\x0161|\x20AC|", wide);
  EXPECT_EQ(7, Wide(64, L"%S|%hs|%ls|", "ab", "c", L"d"));
  EXPECT_STREQ(L"ab|c|d|", wide);
}

TEST_F(FormatContract, TextInANarrowFormatIsNarrowAndCapitalSIsWide)
{
  EXPECT_EQ(5, Narrow(64, "%s|%c|%d", "a", 'b', 7));
  EXPECT_STREQ("a|b|7", narrow);
  EXPECT_EQ(5, Narrow(64, "%S|%ls|%hs", L"a", L"b", "c"));
  EXPECT_STREQ("a|b|c", narrow);
}

TEST_F(FormatContract, WidthAndPrecisionCutAndPadText)
{
  (void)Wide(64, L"%5s|%-5s|%.2s|%*s|%.*s", L"ab", L"cd", L"efgh", 3, L"i", 1, L"jk");
  EXPECT_STREQ(L"   ab|cd   |ef|  i|j", wide);
}

TEST_F(FormatContract, NullTextIsShownAsSuch)
{
  EXPECT_EQ(6, Wide(64, L"%s", static_cast<const wchar_t*>(nullptr)));
  EXPECT_STREQ(L"(null)", wide);
}

TEST_F(FormatContract, IntegersAreWrittenInAllBases)
{
  (void)Wide(64, L"%d|%i|%05d|%-5d|%+d|% d|%u", -5, 6, -42, 7, 8, 9, -1);
  EXPECT_STREQ(L"-5|6|-0042|7    |+8| 9|4294967295", wide);
  (void)Wide(64, L"%x|%X|%#x|%o|%04X|%%", 255, 255, 255, 8, 0x1F);
  EXPECT_STREQ(L"ff|FF|0xff|10|001F|%", wide);
}

TEST_F(FormatContract, ALongHas32BitsAndALongLong64)
{
  const int64_t big = int64_t{1} << 40;
  (void)Wide(64, L"%lld|%I64d|%hd|%lx", big, big, 70000, DWORD{0xFFFFFFFF});
  EXPECT_STREQ(L"1099511627776|1099511627776|4464|ffffffff", wide);
}

TEST_F(FormatContract, ExponentsHaveThreeDigits)
{
  (void)Wide(64, L"%f|%g|%e|%g|%g", 1.5, 1e10, 1e-5, 1e100, 0.0001);
  EXPECT_STREQ(L"1.500000|1e+010|1.000000e-005|1e+100|0.0001", wide);
  (void)Wide(64, L"%010.2f|%-9.1e|%+08.2f", -1.5, 2.5, 1.5);
  EXPECT_STREQ(L"-000001.50|2.5e+000 |+0001.50", wide);
}

TEST_F(FormatContract, AWideTextOfTheExactSizeFits)
{
  EXPECT_EQ(3, Wide(4, L"%s", L"abc"));
  EXPECT_STREQ(L"abc", wide);
  EXPECT_EQ(static_cast<wchar_t>(0xBDBD), wide[4]);
}

TEST_F(FormatContract, AWideTextThatIsTooLongLeavesAnEmptyText)
{
  for (const wchar_t* text : {L"abcd", L"abcdefgh"}) {
    EXPECT_EQ(-1, Wide(4, L"%s", text));
    EXPECT_STREQ(L"", wide);
  }
}

TEST_F(FormatContract, ANarrowTextOfTheExactSizeFits)
{
  EXPECT_EQ(3, Narrow(4, "%s", "abc"));
  EXPECT_STREQ("abc", narrow);
}

TEST_F(FormatContract, ANarrowTextThatIsTooLongLeavesAnEmptyText)
{
  EXPECT_EQ(NarrowFormatLeavesText() ? 4 : -1, Narrow(4, "%s", "abcd"));
  EXPECT_EQ(-1, Narrow(4, "%s", "abcde"));
  EXPECT_EQ(NarrowFormatLeavesText() ? 'a' : '\0', narrow[0]);
}

TEST_F(FormatContract, AWideCharacterBeyondTheCodePageFailsInANarrowText)
{
  EXPECT_EQ(-1, Narrow(64, "%S", L"\x20AC"));
  EXPECT_EQ(1, Narrow(64, "%S", L"\x00E4"));
}

TEST_F(MessageFormat, TextIsWideAndNumbersAreDecimal)
{
  EXPECT_EQ(14, wsprintfW(message, L"%s|%d|%d|%%", L"a\x20AC", -12, 34567));
  EXPECT_STREQ(L"a\x20AC|-12|34567|%", message);
  EXPECT_EQ(MessagePoison, message[15]);
}

TEST_F(MessageFormat, NullTextIsShownAsSuch)
{
  EXPECT_EQ(6, wsprintfW(message, L"%s", static_cast<const wchar_t*>(nullptr)));
  EXPECT_STREQ(L"(null)", message);
}

TEST_F(MessageFormat, ATextOf1022CharactersIsWhole)
{
  EXPECT_EQ(1022, wsprintfW(message, L"ab%s", Letters(1020)));
  EXPECT_EQ(L'x', message[1021]);
  EXPECT_EQ(L'\0', message[1022]);
  EXPECT_EQ(MessagePoison, message[1023]);
}

TEST_F(MessageFormat, ALongerTextIsCutAfter1023CharactersAndATerminator)
{
  for (const size_t letterCount : {1021u, 1022u, 1023u, 2000u}) {
    (void)wsprintfW(message, L"ab%s", Letters(letterCount));
    EXPECT_EQ(L'x', message[1022]);
    EXPECT_EQ(L'\0', message[1023]);
    EXPECT_EQ(MessagePoison, message[1024]);
  }
}

TEST_F(MessageFormat, WhatFollowsALongTextIsCutToo)
{
  (void)wsprintfW(message, L"%s tail", Letters(1021));
  EXPECT_EQ(L'x', message[1020]);
  EXPECT_EQ(L' ', message[1021]);
  EXPECT_EQ(L't', message[1022]);
  EXPECT_EQ(L'\0', message[1023]);
}
