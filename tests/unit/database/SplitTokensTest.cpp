#include "database/SplitTokens.h"

#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

namespace {

Lines Split(const std::string& text, const wchar_t* delimiters)
{
  QulArray<QulString> tokens;
  SplitTokens(Handle(text), tokens, delimiters);
  return TextsOf(tokens);
}

}  // namespace

TEST(SplitTokens, CutsAtEachDelimiter)
{
  EXPECT_EQ(Split("A;B;C", L";"), (Lines{"A", "B", "C"}));
  EXPECT_EQ(Split("A", L";"), (Lines{"A"}));
  EXPECT_EQ(Split("A,B;C", L";"), (Lines{"A,B", "C"}));
}

TEST(SplitTokens, HasNoEmptyPlaces)
{
  EXPECT_EQ(Split("A;;C", L";"), (Lines{"A", "C"}));
  EXPECT_EQ(Split(";A;C;", L";"), (Lines{"A", "C"}));
  EXPECT_EQ(Split(";;;A;;;;C;;", L";"), (Lines{"A", "C"}));
}

TEST(SplitTokens, OfNothingAreNone)
{
  EXPECT_TRUE(Split("", L";").empty());
  EXPECT_TRUE(Split(";", L";").empty());
  EXPECT_TRUE(Split(";;;", L";").empty());
}

TEST(SplitTokens, KeepBlanks)
{
  EXPECT_EQ(Split(" A ; ;B", L";"), (Lines{" A ", " ", "B"}));
}

TEST(SplitTokens, KnowSeveralDelimiters)
{
  EXPECT_EQ(Split("A;B,C,;D", L";,"), (Lines{"A", "B", "C", "D"}));
}

TEST(SplitTokens, AreTheWholeTextWithoutDelimiters)
{
  EXPECT_EQ(Split("A;B", L""), (Lines{"A;B"}));
}

TEST(SplitTokens, TakeThePlaceOfWhatWasThere)
{
  QulArray<QulString> tokens;
  SplitTokens(L"A;B;C", tokens, L";");
  SplitTokens(L"D", tokens, L";");
  EXPECT_EQ(TextsOf(tokens), (Lines{"D"}));
  SplitTokens(L"", tokens, L";");
  EXPECT_EQ(tokens.count, 0);
}

TEST(SplitTokens, LeaveTheTextAsItIs)
{
  const QulString text(L"A;B");
  const QulString shared(text);
  QulArray<QulString> tokens;
  SplitTokens(text, tokens, L";");
  EXPECT_EQ(TextOf(text), "A;B");
  EXPECT_EQ(TextOf(shared), "A;B");
}

TEST(SplitTokens, MayBeCutFromOneOfThem)
{
  QulArray<QulString> tokens;
  SplitTokens(L"A,B;C,D", tokens, L";");
  SplitTokens(QulString(tokens.data[0]), tokens, L",");
  EXPECT_EQ(TextsOf(tokens), (Lines{"A", "B"}));
}

TEST(SplitTokens, AreAsManyAndAsLongAsTheTextHolds)
{
  std::string text;
  for (int i = 0; i < 1000; ++i)
    text += std::to_string(i) + ";";
  EXPECT_EQ(Split(text, L";").size(), 1000u);
  EXPECT_EQ(Split(Letters(65534) + ";y", L";"), (Lines{Letters(65534), "y"}));
}
