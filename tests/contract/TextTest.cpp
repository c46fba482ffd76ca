// The runtime's text functions, and MultiByteToWideChar.
#include "tests/contract/ContractTest.h"

#include <stdlib.h>
#include <string.h>
#include <wchar.h>
#include <wctype.h>

namespace {

// What these functions give for arguments that can't be served.
constexpr int Invalid = 22;
constexpr int TooLong = 34;
constexpr int Truncated = 80;

constexpr size_t BufferCharacters = 16;
const wchar_t WidePoison = static_cast<wchar_t>(0xBDBD);

// A poisoned buffer that may begin with a text.
struct Wide
{
  explicit Wide(const wchar_t* start = nullptr)
  {
    memset(text, 0xBD, sizeof(text));
    if (start != nullptr)
      memcpy(text, start, (wcslen(start) + 1) * sizeof(wchar_t));
  }

  wchar_t text[BufferCharacters];
};

struct Narrow
{
  explicit Narrow(const char* start = nullptr)
  {
    memset(text, 0xBD, sizeof(text));
    if (start != nullptr)
      memcpy(text, start, strlen(start) + 1);
  }

  char text[BufferCharacters];
};

int Sign(int number)
{
  return number < 0 ? -1 : (number > 0 ? 1 : 0);
}

// Whether a character is of the class, for all that have 16 bits; the count of those that are.
template <typename Test>
int CountOf(Test test)
{
  int count = 0;
  for (wint_t c = 0; c < 0xFFFF; ++c)
    count += test(c) != 0 ? 1 : 0;
  return count;
}

}  // namespace

TEST_F(ContractTest, ACopyOfTheExactSizeFits)
{
  Wide buffer;
  EXPECT_EQ(0, wcscpy_s(buffer.text, 4, L"abc"));
  EXPECT_STREQ(L"abc", buffer.text);
  EXPECT_EQ(WidePoison, buffer.text[4]);
}

TEST_F(ContractTest, ACopyThatIsTooLongLeavesAnEmptyText)
{
  Wide buffer;
  EXPECT_EQ(TooLong, wcscpy_s(buffer.text, 3, L"abc"));
  EXPECT_STREQ(L"", buffer.text);
  EXPECT_EQ(WidePoison, buffer.text[3]);
}

TEST_F(ContractTest, ACopyFromOrToNothingIsInvalid)
{
  Wide buffer;
  EXPECT_EQ(Invalid, wcscpy_s(buffer.text, 4, nullptr));
  EXPECT_STREQ(L"", buffer.text);
  EXPECT_EQ(Invalid, wcscpy_s(buffer.text, 0, L"abc"));
  EXPECT_EQ(Invalid, wcscpy_s(nullptr, 4, L"abc"));
}

TEST_F(ContractTest, AnAppendedTextOfTheExactSizeFits)
{
  Wide buffer(L"xy");
  EXPECT_EQ(0, wcscat_s(buffer.text, 5, L"ab"));
  EXPECT_STREQ(L"xyab", buffer.text);
  EXPECT_EQ(WidePoison, buffer.text[5]);
}

TEST_F(ContractTest, AnAppendedTextThatIsTooLongLeavesAnEmptyText)
{
  Wide buffer(L"xy");
  EXPECT_EQ(TooLong, wcscat_s(buffer.text, 4, L"ab"));
  EXPECT_STREQ(L"", buffer.text);
  EXPECT_EQ(WidePoison, buffer.text[4]);
}

TEST_F(ContractTest, NothingIsAppendedToATextWithoutATerminator)
{
  Wide buffer(L"xy");
  EXPECT_NE(0, wcscat_s(buffer.text, 2, L"a"));
  EXPECT_STREQ(L"", buffer.text);
}

TEST_F(ContractTest, AppendingFromOrToNothingIsInvalid)
{
  Wide buffer(L"xy");
  EXPECT_EQ(Invalid, wcscat_s(buffer.text, 0, L"ab"));
  EXPECT_EQ(Invalid, wcscat_s(buffer.text, 5, nullptr));
  EXPECT_STREQ(L"", buffer.text);
}

TEST_F(ContractTest, ACountedCopyTakesUpToSoManyCharacters)
{
  Wide buffer;
  EXPECT_EQ(0, wcsncpy_s(buffer.text, 4, L"abcdef", 3));
  EXPECT_STREQ(L"abc", buffer.text);
  EXPECT_EQ(0, wcsncpy_s(buffer.text, 4, L"ab", 9));
  EXPECT_STREQ(L"ab", buffer.text);
  EXPECT_EQ(0, wcsncpy_s(buffer.text, 4, L"abcdef", 0));
  EXPECT_STREQ(L"", buffer.text);
}

TEST_F(ContractTest, ACountedCopyThatIsTooLongLeavesAnEmptyText)
{
  Wide buffer;
  EXPECT_EQ(TooLong, wcsncpy_s(buffer.text, 4, L"abcdef", 4));
  EXPECT_STREQ(L"", buffer.text);
}

TEST_F(ContractTest, ACountOfMinusOneCutsTheText)
{
  Wide buffer;
  EXPECT_EQ(Truncated, wcsncpy_s(buffer.text, 4, L"abcdef", static_cast<size_t>(-1)));
  EXPECT_STREQ(L"abc", buffer.text);
  EXPECT_EQ(Truncated, wcsncat_s(buffer.text, 6, L"xyz", static_cast<size_t>(-1)));
  EXPECT_STREQ(L"abcxy", buffer.text);
}

TEST_F(ContractTest, ACountOfMinusOneIsInvalidForABufferOfNoSize)
{
  Wide buffer;
  EXPECT_EQ(Invalid, wcsncpy_s(buffer.text, 0, L"abc", static_cast<size_t>(-1)));
  EXPECT_EQ(WidePoison, buffer.text[0]);
}

TEST_F(ContractTest, ACountedCopyFromNothingIsInvalidButForACountOfZero)
{
  Wide buffer;
  EXPECT_EQ(0, wcsncpy_s(buffer.text, 4, nullptr, 0));
  EXPECT_EQ(0, wcsncpy_s(nullptr, 0, nullptr, 0));
  EXPECT_EQ(Invalid, wcsncpy_s(buffer.text, 4, nullptr, 2));
  EXPECT_STREQ(L"", buffer.text);
}

TEST_F(ContractTest, ACountedAppendTakesUpToSoManyCharacters)
{
  Wide buffer(L"xy");
  EXPECT_EQ(0, wcsncat_s(buffer.text, 5, L"abcd", 2));
  EXPECT_STREQ(L"xyab", buffer.text);
  EXPECT_EQ(0, wcsncat_s(buffer.text, 5, L"abcd", 0));
  EXPECT_STREQ(L"xyab", buffer.text);
  EXPECT_EQ(TooLong, wcsncat_s(buffer.text, 5, L"abcd", 1));
  EXPECT_STREQ(L"", buffer.text);
}

TEST_F(ContractTest, NarrowCopiesFollowTheSameRules)
{
  Narrow buffer;
  EXPECT_EQ(0, strcpy_s(buffer.text, 4, "abc"));
  EXPECT_STREQ("abc", buffer.text);
  EXPECT_EQ(0, strcat_s(buffer.text, 5, "d"));
  EXPECT_STREQ("abcd", buffer.text);
  EXPECT_EQ(TooLong, strcat_s(buffer.text, 5, "e"));
  EXPECT_STREQ("", buffer.text);
  EXPECT_EQ(TooLong, strcpy_s(buffer.text, 3, "abc"));
  EXPECT_EQ(Invalid, strcpy_s(buffer.text, 3, nullptr));
  EXPECT_EQ(Invalid, strcat_s(buffer.text, 0, "a"));
}

TEST_F(ContractTest, TokensAreNeverEmpty)
{
  char text[] = "..18.1..2.";
  char* context = nullptr;
  EXPECT_STREQ("18", strtok_s(text, ".", &context));
  EXPECT_STREQ("1", strtok_s(nullptr, ".", &context));
  EXPECT_STREQ("2", strtok_s(nullptr, ".", &context));
  EXPECT_EQ(nullptr, strtok_s(nullptr, ".", &context));
}

TEST_F(ContractTest, ATextOfSeparatorsHasNoToken)
{
  char dots[] = "...";
  char empty[] = "";
  char* context = nullptr;
  EXPECT_EQ(nullptr, strtok_s(dots, ".", &context));
  EXPECT_EQ(nullptr, strtok_s(empty, ".", &context));
}

TEST_F(ContractTest, WideTokensAreNeverEmpty)
{
  wchar_t text[] = L";;a;b\x20AC;,;c;";
  wchar_t* context = nullptr;
  EXPECT_STREQ(L"a", wcstok_s(text, L";,", &context));
  EXPECT_STREQ(L"b\x20AC", wcstok_s(nullptr, L";,", &context));
  EXPECT_STREQ(L"c", wcstok_s(nullptr, L";,", &context));
  EXPECT_EQ(nullptr, wcstok_s(nullptr, L";,", &context));
  EXPECT_EQ(nullptr, wcstok_s(nullptr, L";,", &context));
}

TEST_F(ContractTest, AWideTextOfSeparatorsHasNoToken)
{
  wchar_t separators[] = L";;";
  wchar_t empty[] = L"";
  wchar_t* context = nullptr;
  EXPECT_EQ(nullptr, wcstok_s(separators, L";", &context));
  EXPECT_EQ(nullptr, wcstok_s(empty, L";", &context));
}

TEST_F(ContractTest, AWideTextWithoutSeparatorsIsOneToken)
{
  wchar_t text[] = L"a,b";
  wchar_t* context = nullptr;
  EXPECT_STREQ(L"a,b", wcstok_s(text, L";", &context));
  EXPECT_EQ(text + 3, context);
}

TEST_F(ContractTest, LowerCaseIsOfAsciiAlone)
{
  wchar_t text[] = L"AZ[`az\x00C4\x0391";
  EXPECT_EQ(0, _wcslwr_s(text, 9));
  EXPECT_STREQ(L"az[`az\x00C4\x0391", text);
  EXPECT_EQ(0xC4, towlower(0xC4));
  EXPECT_EQ(0xE4, towupper(0xE4));
  EXPECT_EQ(26, CountOf([](wint_t c) { return towlower(c) != c; }));
}

TEST_F(ContractTest, LowerCaseNeedsATerminatorWithinTheSize)
{
  Wide buffer(L"XY");
  EXPECT_EQ(0, _wcslwr_s(buffer.text, 3));
  EXPECT_EQ(Invalid, _wcslwr_s(buffer.text, 2));
  EXPECT_STREQ(L"", buffer.text);
  EXPECT_EQ(Invalid, _wcslwr_s(nullptr, 2));
}

TEST_F(ContractTest, ComparisonWithoutCaseIsOfAsciiAlone)
{
  EXPECT_EQ(0, _wcsicmp(L"aBz", L"AbZ"));
  EXPECT_EQ(-1, Sign(_wcsicmp(L"\x00C4", L"\x00E4")));
  EXPECT_EQ(-1, Sign(_wcsicmp(L"A_", L"ab")));
  EXPECT_EQ(-1, Sign(_wcsicmp(L"a", L"ab")));
  EXPECT_EQ(1, Sign(_wcsicmp(L"\xFF10", L"a")));
  EXPECT_EQ(0, _wcsnicmp(L"aBc", L"AbX", 2));
  EXPECT_EQ(-1, Sign(_wcsnicmp(L"aBc", L"AbX", 3)));
  EXPECT_EQ(0, _wcsnicmp(L"ab", L"AB", 9));
}

TEST_F(ContractTest, NumbersAreReadFromTexts)
{
  const struct
  {
    const wchar_t* text;
    int number;
  } rows[] = {{L"15", 15},
              {L" \t\n15", 15},
              {L"-7x", -7},
              {L"+3", 3},
              {L"x", 0},
              {L"", 0},
              {L"- 5", 0},
              {L"007", 7},
              {L"2147483647", 2147483647},
              {L"2147483648", 2147483647},
              {L"99999999999999999999", 2147483647},
              {L"-99999999999", -2147483647 - 1},
              {L"\x00A0"
               L"5",
               5},
              {L"1\x0662", 12},
              {L"\xFF11", 1},
              {L"\x00B2", 0}};
  for (const auto& row : rows)
    EXPECT_EQ(row.number, _wtoi(row.text)) << testing::PrintToString(row.text);
}

TEST_F(ContractTest, DigitsAndBlanksAreThoseOfUnicode)
{
  for (const wchar_t digit : L"09\x00B2\x00B9\x0660\x06F9\x07C5\xFF10")
    EXPECT_EQ(digit != L'\0', iswdigit(digit) != 0) << testing::PrintToString(digit);
  for (const wchar_t other : L"/:a\x00BD\x066A\x2460")
    EXPECT_EQ(0, iswdigit(other)) << testing::PrintToString(other);
  EXPECT_EQ(373, CountOf([](wint_t c) { return iswdigit(c); }));
  EXPECT_EQ(24, CountOf([](wint_t c) { return iswspace(c); }));
}

TEST_F(ContractTest, SearchesFindTheFirstOrTheLastPlace)
{
  const wchar_t* const text =
      L"a\x0161"
      L"b;ab;";
  EXPECT_EQ(text + 2, wcsstr(text, L"b;"));
  EXPECT_EQ(text + 4, wcsstr(text, L"ab;"));
  EXPECT_EQ(text, wcsstr(text, L""));
  EXPECT_EQ(nullptr, wcsstr(text, L"abc"));
  EXPECT_EQ(nullptr, wcsstr(L"", L"a"));
  EXPECT_EQ(text + 3, wcschr(text, L';'));
  EXPECT_EQ(text + 6, wcsrchr(text, L';'));
  EXPECT_EQ(text + 7, wcschr(text, L'\0'));
  EXPECT_EQ(nullptr, wcschr(text, L'b' + 0x100));
}

TEST_F(ContractTest, ComparisonsGoByCharacter)
{
  EXPECT_EQ(0, wcscmp(L"ab", L"ab"));
  EXPECT_EQ(-1, Sign(wcscmp(L"a", L"ab")));
  EXPECT_EQ(1, Sign(wcscmp(L"\xFF10", L"a")));
  EXPECT_EQ(0, wcsncmp(L"abc", L"abd", 2));
  EXPECT_EQ(5u, wcslen(L"a\x0161"
                       L"b;a"));
}

TEST_F(ContractTest, AnsiTextIsCodePage1252)
{
  const char text[] = "\x80\x9F\xC4\xFF";
  wchar_t wide[5] = {};
  EXPECT_EQ(5, MultiByteToWideChar(CP_ACP, 0, text, -1, wide, 5));
  EXPECT_STREQ(L"\x20AC\x0178\x00C4\x00FF", wide);
}

TEST_F(ContractTest, EachAnsiCharacterHasOneWideOne)
{
  unsigned int sum = 0;
  for (int c = 1; c < 256; ++c) {
    const char narrow = static_cast<char>(c);
    wchar_t wide = L'\0';
    ASSERT_EQ(1, MultiByteToWideChar(CP_ACP, 0, &narrow, 1, &wide, 1));
    sum += static_cast<unsigned int>(c) * static_cast<unsigned int>(wide);
  }
  EXPECT_EQ(25534816u, sum);
}

TEST_F(ContractTest, ATextTooLongForTheBufferFillsItWithoutATerminator)
{
  Wide buffer;
  EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, "abc", -1, buffer.text, 3));
  EXPECT_EQ(static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), GetLastError());
  EXPECT_EQ(0, wmemcmp(buffer.text, L"abc", 3));
  EXPECT_EQ(WidePoison, buffer.text[3]);
}

TEST_F(ContractTest, ATextThatFitsTheBufferComesWithItsTerminator)
{
  Wide buffer;
  EXPECT_EQ(4, MultiByteToWideChar(CP_ACP, 0, "abc", -1, buffer.text, 4));
  EXPECT_STREQ(L"abc", buffer.text);
  EXPECT_EQ(WidePoison, buffer.text[4]);
}

TEST_F(ContractTest, ACountedTextIsConvertedWithoutATerminator)
{
  Wide buffer;
  EXPECT_EQ(2, MultiByteToWideChar(CP_ACP, 0, "abc", 2, buffer.text, 9));
  EXPECT_EQ(WidePoison, buffer.text[2]);
}

TEST_F(ContractTest, AConversionIntoNothingGivesTheSize)
{
  EXPECT_EQ(4, MultiByteToWideChar(CP_ACP, 0, "abc", -1, nullptr, 0));
}

TEST_F(ContractTest, AConversionOfNothingFails)
{
  Wide buffer;
  EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, nullptr, -1, buffer.text, 4));
  EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, "abc", 0, buffer.text, 4));
  EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), GetLastError());
}
