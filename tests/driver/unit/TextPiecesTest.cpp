#include "driver/Collation.h"
#include "driver/ConnectionString.h"
#include "driver/DateText.h"
#include "driver/SqlTokens.h"
#include "driver/Text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

const std::vector<std::string> OddTexts{"",
                                        "a",
                                        "A",
                                        "ab",
                                        "Ab",
                                        "b",
                                        "Z",
                                        "[",
                                        "_",
                                        "ä",
                                        "Ä",
                                        "ß",
                                        "ẞ",
                                        "Ω",
                                        "ω",
                                        "İ",
                                        "i",
                                        "I",
                                        "ı",
                                        "ſ",
                                        "s",
                                        "K",
                                        "k",
                                        "日本",
                                        "\xFF",
                                        "\xC3",
                                        "a\xC3",
                                        "\xE2\x82",
                                        "\xF0\x9F\x94",
                                        "\xED\xA0\xBD",
                                        "\xC0\x80",
                                        "\xF8\x80",
                                        "\xF0\x9F\x94\xA9",
                                        "a\xFF",
                                        "A\xFE",
                                        "9/3/2007",
                                        "2007-03-09 00:00:00",
                                        "10/2/2007",
                                        "2007-03-09",
                                        "some day",
                                        "3 days",
                                        "2007-03-10"};

// A comparison by SQLite, with one of the driver's collations.
class Collations : public testing::TestWithParam<const char*>
{
protected:
  Collations()
  {
    EXPECT_EQ(sqlite3_open(":memory:", &database), SQLITE_OK);
    EXPECT_EQ(RegisterCollations(database), SQLITE_OK);
    const std::string sql = "SELECT (?1 < ?2 COLLATE " + std::string(GetParam()) +
                            ") - (?1 > ?2 COLLATE " + std::string(GetParam()) + ")";
    EXPECT_EQ(sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr), SQLITE_OK);
  }
  ~Collations() override
  {
    sqlite3_finalize(statement);
    sqlite3_close(database);
  }

  // Less than 0 if left stands behind right.
  int Order(const std::string& left, const std::string& right)
  {
    sqlite3_reset(statement);
    sqlite3_bind_text(statement, 1, left.data(), static_cast<int>(left.size()), SQLITE_TRANSIENT);
    sqlite3_bind_text(statement, 2, right.data(), static_cast<int>(right.size()), SQLITE_TRANSIENT);
    EXPECT_EQ(sqlite3_step(statement), SQLITE_ROW);
    return sqlite3_column_int(statement, 0);
  }

private:
  sqlite3* database = nullptr;
  sqlite3_stmt* statement = nullptr;
};

SQL_TIMESTAMP_STRUCT Moment(SQLSMALLINT year, SQLUSMALLINT month, SQLUSMALLINT day,
                            SQLUSMALLINT hour = 0, SQLUSMALLINT minute = 0, SQLUSMALLINT second = 0)
{
  return {year, month, day, hour, minute, second, 0};
}

}  // namespace

TEST_P(Collations, AreAStrictWeakOrder)
{
  for (const std::string& a : OddTexts) {
    EXPECT_EQ(Order(a, a), 0) << a;
    for (const std::string& b : OddTexts) {
      EXPECT_EQ(Order(a, b), -Order(b, a)) << a << " and " << b;
      for (const std::string& c : OddTexts) {
        if (Order(a, b) >= 0 && Order(b, c) >= 0) {
          const int expected = Order(a, b) == 0 && Order(b, c) == 0 ? 0 : 1;
          EXPECT_EQ(Order(a, c), expected) << a << ", " << b << " and " << c;
        }
      }
    }
  }
}

TEST_P(Collations, KnowAPrefixAsTheLesser)
{
  EXPECT_EQ(Order("abc", "abcd"), 1);
  EXPECT_EQ(Order("", "a"), 1);
}

INSTANTIATE_TEST_SUITE_P(Each, Collations, testing::Values(TextCollation, DateCollation),
                         [](const testing::TestParamInfo<const char*>& collation) {
                           return std::string(collation.param);
                         });

TEST(CompareNoCase, FoldsLettersOfEveryAlphabetAndNothingElse)
{
  EXPECT_TRUE(EqualsNoCase("Bolt", "bOLT"));
  EXPECT_TRUE(EqualsNoCase("ÄRGER", "ärger"));
  EXPECT_TRUE(EqualsNoCase("ΩΜΕΓΑ", "ωμεγα"));
  EXPECT_TRUE(EqualsNoCase("ЖУК", "жук"));
  EXPECT_FALSE(EqualsNoCase("a", "ä"));
  EXPECT_FALSE(EqualsNoCase("[", "{"));
  EXPECT_FALSE(EqualsNoCase("@", "`"));
  EXPECT_FALSE(EqualsNoCase("a", "a "));
}

TEST(CompareNoCase, TellsInvalidBytesApart)
{
  EXPECT_FALSE(EqualsNoCase("\xFF", "\xFE"));
  EXPECT_TRUE(EqualsNoCase("A\xFF", "a\xFF"));
  EXPECT_NE(CompareNoCase("\xC3", "\xC3\xA4"), 0);
}

TEST(MatchesPattern, KnowsItsTwoCharactersAndTheEscape)
{
  EXPECT_TRUE(MatchesPattern("Bolts", "b%", 0));
  EXPECT_TRUE(MatchesPattern("Bolts", "%", 0));
  EXPECT_TRUE(MatchesPattern("", "%", 0));
  EXPECT_TRUE(MatchesPattern("Bolts", "B__ts", 0));
  EXPECT_TRUE(MatchesPattern("aXbXc", "a%b%c", 0));
  EXPECT_TRUE(MatchesPattern("aab", "%ab", 0));
  EXPECT_TRUE(MatchesPattern("ä", "_", 0));
  EXPECT_FALSE(MatchesPattern("Bolts", "Bolt", 0));
  EXPECT_FALSE(MatchesPattern("", "_", 0));
  EXPECT_TRUE(MatchesPattern("a_b", "a\\_b", '\\'));
  EXPECT_FALSE(MatchesPattern("aXb", "a\\_b", '\\'));
}

TEST(Utf16, KeepsPairsAndLoneHalves)
{
  const std::u16string text = u"a\xD83D\xDD29\xD83Dz\xDD29";
  const SQLWCHAR* units = reinterpret_cast<const SQLWCHAR*>(text.c_str());
  EXPECT_EQ(ToUtf8(units, 3), "a\xF0\x9F\x94\xA9");
  EXPECT_EQ(ToUtf16(ToUtf8(units, SQL_NTS)), text);
}

TEST(CopyText, CutsBetweenCharactersAndAlwaysEndsTheText)
{
  const std::string text = "a\xF0\x9F\x94\xA9z";
  for (size_t capacity = 1; capacity < 8; ++capacity) {
    SQLCHAR narrow[8];
    SQLWCHAR wide[8];
    std::memset(narrow, 0xBD, sizeof(narrow));
    std::memset(wide, 0xBD, sizeof(wide));
    EXPECT_EQ(CopyText(text, narrow, capacity), 6U);
    EXPECT_EQ(CopyText(text, wide, capacity), 4U);
    const size_t narrowLength = strlen(reinterpret_cast<const char*>(narrow));
    EXPECT_EQ(narrowLength, capacity == 1 ? 0 : capacity < 6 ? 1 : capacity - 1) << capacity;
    const size_t wideLength = std::u16string(reinterpret_cast<const char16_t*>(wide)).size();
    EXPECT_EQ(wideLength, capacity <= 1 ? 0 : capacity <= 3 ? 1 : capacity == 4 ? 3 : 4);
  }
}

TEST(ConnectionString, OfOddShapesIsReadOrRefused)
{
  ConnectionString read;
  EXPECT_TRUE(read.Read("DBQ = a b ;; uid={x;}};y} ; PWD=;DBQ=second"));
  EXPECT_EQ(*read.Find("dbq"), "a b");
  EXPECT_EQ(*read.Find("UID"), "x;};y");
  EXPECT_EQ(*read.Find("pwd"), "");
  EXPECT_EQ(read.Find("driver"), nullptr);
  EXPECT_FALSE(ConnectionString().Read("DBQ={never closed"));
  EXPECT_FALSE(ConnectionString().Read("DBQ=x;no value"));
  EXPECT_TRUE(ConnectionString().Read(""));
}

TEST(ConnectionString, WritesWhatItReads)
{
  ConnectionString read;
  ASSERT_TRUE(read.Read("Driver={Some Driver};DBQ={a;b}}c=d};PWD={ x }"));
  ConnectionString again;
  ASSERT_TRUE(again.Read(read.Write())) << read.Write();
  for (const char* keyword : {"DRIVER", "DBQ", "PWD"})
    EXPECT_EQ(*again.Find(keyword), *read.Find(keyword)) << read.Write();
}

TEST(ConnectionString, NamesTheFirstUnknownKeyword)
{
  ConnectionString read;
  ASSERT_TRUE(read.Read("DRIVER=d;DBQ=x;Mode=2;Size=3"));
  EXPECT_EQ(read.UnknownKeyword(), "Mode");
}

TEST(ReadMoment, LeavesTheMomentAloneWhenTextIsNoDate)
{
  for (const char* text :
       {"", "x", "9/3", "9/3/", "32/1/2007", "29/2/2007", "2007-02-30", "2007-3", "9-3-2007x",
        "9/3/2007 24:00:00", "9/3/2007 1", "9/3/2007 1:2:3 x", "2007-03-09 12:00:60"}) {
    SQL_TIMESTAMP_STRUCT moment = Moment(77, 7, 7);
    EXPECT_FALSE(ReadMoment(text, moment)) << text;
    EXPECT_EQ(CompareMoments(moment, Moment(77, 7, 7)), 0) << text;
  }
}

TEST(ReadMoment, TakesTheDayFirst)
{
  SQL_TIMESTAMP_STRUCT moment = {};
  ASSERT_TRUE(ReadMoment("9/3/2007 1:02", moment));
  EXPECT_EQ(CompareMoments(moment, Moment(2007, 3, 9, 1, 2)), 0);
  EXPECT_EQ(WriteMoment(moment), "2007-03-09 01:02:00");
}

TEST(CompareMoments, LooksAtEachPart)
{
  const SQL_TIMESTAMP_STRUCT moment = Moment(2007, 3, 9, 4, 5, 6);
  for (const auto& later :
       {Moment(2008, 1, 1), Moment(2007, 4, 1), Moment(2007, 3, 10), Moment(2007, 3, 9, 5),
        Moment(2007, 3, 9, 4, 6), Moment(2007, 3, 9, 4, 5, 7)}) {
    EXPECT_LT(CompareMoments(moment, later), 0);
    EXPECT_GT(CompareMoments(later, moment), 0);
  }
}

TEST(FirstWord, IsBehindBlanksAndComments)
{
  EXPECT_EQ(FirstWord(" \r\n\tSELECT 1"), "SELECT");
  EXPECT_EQ(FirstWord("-- update\n/* insert */delete from T"), "delete");
  EXPECT_EQ(FirstWord(""), "");
  EXPECT_EQ(FirstWord("/* never closed"), "");
  EXPECT_EQ(FirstWord("-- to the end"), "");
}

TEST(ReplaceEscapeSequences, LeavesBracesInTextAndNamesAlone)
{
  EXPECT_EQ(ReplaceEscapeSequences("SELECT {d '2007-03-09'}"), "SELECT  '2007-03-09'");
  EXPECT_EQ(ReplaceEscapeSequences("SELECT '{d x}',[{d}] FROM T"), "SELECT '{d x}',[{d}] FROM T");
  EXPECT_EQ(ReplaceEscapeSequences("SELECT {ts '2007-03-09 01:02:03'}"),
            "SELECT  '2007-03-09 01:02:03'");
  EXPECT_EQ(ReplaceEscapeSequences("SELECT {fn UCASE('a')}"), "SELECT  UCASE('a')");
}
