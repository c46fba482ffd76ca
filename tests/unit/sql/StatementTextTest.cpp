#include "sql/StatementText.h"

#include "tests/unit/foundation/Texts.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

// A text of quotes and the characters that a comparison by halves or by bytes could take for them.
std::vector<wchar_t> Lookalikes()
{
  return {L'\'',  0x2700, 0x2727, 0x0027 + 0x100, 0x8027, 0x0026,
          0x0028, 0x0001, 0x8000, 0xFFFF,         0xA727, 0x7FFF};
}

std::string QuotedText(const std::vector<wchar_t>& text)
{
  StatementText statement;
  statement.AppendQuoted(text.data(), text.size());
  return Utf8(statement.Text());
}

// The same, one character after the other.
std::string PlainlyQuoted(const std::vector<wchar_t>& text)
{
  std::vector<wchar_t> literal = {L'\''};
  for (const wchar_t character : text) {
    if (character == L'\0')
      break;
    literal.push_back(character);
    if (character == L'\'')
      literal.push_back(character);
  }
  literal.push_back(L'\'');
  return Utf8(literal.data(), literal.size());
}

}  // namespace

TEST(StatementText, IsEmptyAtFirst)
{
  QulWideScratch[0] = L'x';
  const StatementText statement;
  EXPECT_EQ(Utf8(statement.Text()), "");
  EXPECT_EQ(statement.Text(), QulWideScratch);
}

TEST(StatementText, BeginsAnewWithEachStatement)
{
  StatementText first;
  first.Append(L"a long beginning");
  StatementText second;
  EXPECT_EQ(Utf8(second.Text()), "");
  second.Append(L"b");
  EXPECT_EQ(Utf8(second.Text()), "b");
}

TEST(StatementText, IsTerminatedAfterEachPiece)
{
  for (int i = 0; i < 1000; ++i)
    QulWideScratch[i] = L'y';
  StatementText statement;
  statement.Append(L"a");
  EXPECT_EQ(Utf8(statement.Text()), "a");
  statement.AppendName(L"B");
  EXPECT_EQ(Utf8(statement.Text()), "a[B]");
  statement.AppendQuoted(L"c'", 2);
  EXPECT_EQ(Utf8(statement.Text()), "a[B]'c'''");
  statement.AppendInteger(-7);
  EXPECT_EQ(Utf8(statement.Text()), "a[B]'c'''-7");
  statement.AppendDecimals(0.25);
  EXPECT_EQ(Utf8(statement.Text()), "a[B]'c'''-70.250000");
  statement.AppendDecimals(1e20);
  EXPECT_EQ(Utf8(statement.Text()), "a[B]'c'''-70.250000100000000000000000000.000000");
  statement.Append(L"");
  statement.Append(L'!');
  EXPECT_EQ(Utf8(statement.Text()), "a[B]'c'''-70.250000100000000000000000000.000000!");
}

TEST(StatementText, CopiesBracketsInNames)
{
  StatementText statement;
  statement.AppendName(L"");
  statement.AppendName(L"a]b[c");
  statement.AppendName(L"x'%s");
  EXPECT_EQ(Utf8(statement.Text()), "[][a]b[c][x'%s]");
}

TEST(StatementText, ReadsAQuotedTextUpToItsSizeOrTerminator)
{
  // Of each length around some multiples of eight characters.
  for (size_t size = 1; size <= 40; ++size) {
    const std::vector<wchar_t> text(size, L'x');
    EXPECT_EQ(QuotedText(text), "'" + std::string(size, 'x') + "'");
  }
  StatementText statement;
  statement.AppendQuoted(L"ab\0cd", 5);
  statement.AppendQuoted(L"cd", 0);
  EXPECT_EQ(Utf8(statement.Text()), "'ab'''");
}

TEST(StatementText, DoublesAQuoteAtEachPlace)
{
  for (size_t size = 1; size <= 40; ++size) {
    for (size_t place = 0; place < size; ++place) {
      std::vector<wchar_t> text(size, L'x');
      text[place] = L'\'';
      EXPECT_EQ(QuotedText(text), PlainlyQuoted(text)) << size << " " << place;
    }
  }
}

TEST(StatementText, StopsAtATerminatorAtEachPlace)
{
  for (size_t size = 1; size <= 40; ++size) {
    for (size_t place = 0; place < size; ++place) {
      std::vector<wchar_t> text(size, L'\'');
      text[place] = L'\0';
      EXPECT_EQ(QuotedText(text), PlainlyQuoted(text)) << size << " " << place;
    }
  }
}

TEST(StatementText, TakesNothingElseForAQuoteOrATerminator)
{
  const std::vector<wchar_t> characters = Lookalikes();
  for (const wchar_t first : characters) {
    for (const wchar_t second : characters) {
      for (const wchar_t third : characters) {
        const std::vector<wchar_t> text = {first, second, third,  L'x',  second, L'\'',
                                           third, first,  second, third, first,  second};
        EXPECT_EQ(QuotedText(text), PlainlyQuoted(text));
      }
    }
  }
}

TEST(StatementText, QuotesFromAnyAlignment)
{
  std::vector<wchar_t> text = {L'a', L'\'', L'b', 0x0141, L'\'', L'\'', L'c', L'd', L'e'};
  text.insert(text.end(), 30, L'f');
  for (size_t start = 0; start < text.size(); ++start) {
    const std::vector<wchar_t> rest(text.begin() + static_cast<ptrdiff_t>(start), text.end());
    StatementText statement;
    statement.AppendQuoted(text.data() + start, text.size() - start);
    EXPECT_EQ(Utf8(statement.Text()), PlainlyQuoted(rest));
  }
}

TEST(StatementText, QuotesRandomTextsCharacterByCharacter)
{
  std::mt19937 random(1);
  const std::vector<wchar_t> characters = Lookalikes();
  for (int i = 0; i < 5000; ++i) {
    std::vector<wchar_t> text(1 + random() % 100);
    for (wchar_t& character : text)
      character = random() % 8 == 0 ? characters[random() % characters.size()] : L'x';
    if (i % 4 == 0)
      text[random() % text.size()] = L'\0';
    ASSERT_EQ(QuotedText(text), PlainlyQuoted(text)) << i;
  }
}

TEST(StatementText, WritesIntegersOfAllLengths)
{
  for (int32_t power = 1; power <= 100000000; power *= 10) {
    for (const int32_t number : {power - 1, power, power + 1, 9 * power}) {
      StatementText statement;
      statement.AppendInteger(number);
      statement.Append(L" ");
      statement.AppendInteger(-number);
      const std::string digits = std::to_string(number);
      EXPECT_EQ(Utf8(statement.Text()), digits + (number == 0 ? " " : " -") + digits);
    }
  }
}
