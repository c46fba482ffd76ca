// Texts at the edge of what the small readers of the driver take.

#include "driver/Collation.h"
#include "driver/Conversion.h"
#include "driver/DateText.h"
#include "driver/SqlTokens.h"
#include "driver/SqliteError.h"
#include "driver/Text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// A text as a moment is written, or "none".
std::string Read(std::string_view text)
{
  SQL_TIMESTAMP_STRUCT moment = {};
  return ReadMoment(text, moment) ? WriteMoment(moment) : "none";
}

// A database in memory that has the driver's functions.
class LikeFunction : public testing::Test
{
protected:
  LikeFunction()
  {
    EXPECT_EQ(sqlite3_open(":memory:", &database), SQLITE_OK);
    EXPECT_EQ(RegisterCollations(database), SQLITE_OK);
  }
  ~LikeFunction() override { sqlite3_close(database); }

  // The value of an expression, NULL, or the words of an error.
  std::string Value(const std::string& expression)
  {
    sqlite3_stmt* statement = nullptr;
    const std::string sql = "SELECT " + expression;
    std::string value = "NULL";
    (void)sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr);
    const int code = sqlite3_step(statement);
    if (code != SQLITE_ROW)
      value = sqlite3_errmsg(database);
    else if (sqlite3_column_type(statement, 0) != SQLITE_NULL)
      value = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    sqlite3_finalize(statement);
    return value;
  }

  // The state that a statement's error is told as; "none" if it succeeds.
  std::string State(const std::string& sql)
  {
    const int code = sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr);
    Diagnostics diagnostics;
    if (code == SQLITE_OK)
      return "none";
    EXPECT_EQ(FailFromSqlite(diagnostics, database, code), SQL_ERROR);
    return diagnostics.Record(0).state;
  }

  sqlite3* database = nullptr;
};

// The state of a conversion of a moment to a buffer type.
std::string ConvertedMoment(const SQL_TIMESTAMP_STRUCT& moment, SQLSMALLINT cType)
{
  Cell cell;
  cell.kind = CellKind::Moment;
  cell.moment = moment;
  unsigned char buffer[64];
  Target target;
  target.cType = cType;
  target.buffer = buffer;
  target.capacity = sizeof(buffer);
  Diagnostics diagnostics;
  (void)ConvertCell(cell, PlainType(SQL_TYPE_TIMESTAMP), target, diagnostics);
  return diagnostics.Count() == 0 ? "none" : diagnostics.Record(0).state;
}

}  // namespace

TEST(ReadMoment, TakesATimeAlone)
{
  EXPECT_EQ(Read("1:02"), "1899-12-30 01:02:00");
  EXPECT_EQ(Read(" 13:14:15.25 "), "1899-12-30 13:14:15.25");
  for (const char* text : {"1:", "1:x", "1:2:", "1:2:3.", "1:2:3.x", "1:2:3x"})
    EXPECT_EQ(Read(text), "none") << text;
}

TEST(ReadMoment, KeepsNineDigitsOfASecond)
{
  EXPECT_EQ(Read("2007-03-09T01:02:03.1234567899"), "2007-03-09 01:02:03.123456789");
  EXPECT_EQ(Read("2007-03-09 01:02:03.000"), "2007-03-09 01:02:03");
  EXPECT_EQ(Read("2007-03-09 01:02:03./"), "none");
}

TEST(ReadMoment, KnowsLeapYears)
{
  EXPECT_EQ(Read("2004-02-29"), "2004-02-29 00:00:00");
  EXPECT_EQ(Read("2000-02-29"), "2000-02-29 00:00:00");
  EXPECT_EQ(Read("1900-02-29"), "none");
}

TEST(ReadMoment, RefusesPartsThatAreTooLongOrMissing)
{
  for (const char* text : {"12345-01-01", "2007-123-01", "2007-x-01", "2007-03-09 1:x",
                           "2007-03-09 123:00", "9/3/2007T"})
    EXPECT_EQ(Read(text), "none") << text;
}

TEST(ConvertCell, PartOfAMomentThatIsLostIsToldOfEachUnit)
{
  EXPECT_EQ(ConvertedMoment({2007, 3, 9, 0, 0, 0, 0}, SQL_C_TYPE_DATE), "none");
  EXPECT_EQ(ConvertedMoment({2007, 3, 9, 1, 0, 0, 0}, SQL_C_TYPE_DATE), "01S07");
  EXPECT_EQ(ConvertedMoment({2007, 3, 9, 0, 1, 0, 0}, SQL_C_TYPE_DATE), "01S07");
  EXPECT_EQ(ConvertedMoment({2007, 3, 9, 0, 0, 1, 0}, SQL_C_TYPE_DATE), "01S07");
  EXPECT_EQ(ConvertedMoment({2007, 3, 9, 0, 0, 0, 1}, SQL_C_TYPE_DATE), "01S07");
  EXPECT_EQ(ConvertedMoment({2007, 3, 9, 1, 2, 3, 0}, SQL_C_TYPE_TIME), "none");
  EXPECT_EQ(ConvertedMoment({2007, 3, 9, 1, 2, 3, 4}, SQL_C_TYPE_TIME), "01S07");
}

TEST(ConvertCell, BufferOfNoKnownTypeIsRefused)
{
  for (const SQLSMALLINT noType : std::initializer_list<SQLSMALLINT>{60, -60, 4711})
    EXPECT_EQ(ConvertedMoment({2007, 3, 9, 1, 2, 3, 4}, noType), "07006") << noType;
}

TEST(TakeCharacter, TakesWhatIsNoUtf8AsSingleBytes)
{
  // A byte that goes on nothing, one that should go on, two overlong forms, and one beyond the
  // last.
  for (const char* text :
       {"\x80", "\xC3(", "\xE0\x80\x80", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80"}) {
    std::string_view rest = text;
    EXPECT_EQ(TakeCharacter(rest), InvalidByteBase + static_cast<unsigned char>(text[0]));
    EXPECT_EQ(rest, text + 1);
    EXPECT_EQ(ToUtf16(text).substr(0, 1), u"\xFFFD");
  }
}

TEST(Utf16, KeepsAHalfAtTheEndAndInFrontOfAnother)
{
  for (const std::u16string& text : {std::u16string(u"ä\xD83D"), std::u16string(u"\xD83D\xE000")}) {
    const auto* const units = reinterpret_cast<const SQLWCHAR*>(text.data());
    EXPECT_EQ(ToUtf16(ToUtf8(units, static_cast<SQLLEN>(text.size()))), text);
  }
}

TEST(CopyText, PutsTheReplacementCharacterForWhatIsNoUtf8)
{
  SQLWCHAR wide[4] = {};
  EXPECT_EQ(CopyText("a\xFFz", wide, 4), 3U);
  EXPECT_EQ(wide[1], 0xFFFD);
}

TEST(CompareNoCase, TakesBothSmallFormsOfSigmaAndLongTextBeyondAscii)
{
  EXPECT_TRUE(EqualsNoCase("ΟΔΟΣ", "οδος"));
  EXPECT_TRUE(EqualsNoCase("Größe des Bolzens", "GRÖßE DES BOLZENS"));
  EXPECT_TRUE(EqualsNoCase("ääääääää", "ääääääää"));
}

TEST(MatchesPattern, EscapeStandsForItselfAtTheEnd)
{
  EXPECT_TRUE(MatchesPattern("a\\", "a\\", '\\'));
  EXPECT_TRUE(MatchesPattern("a%", "a%%", '%'));
  EXPECT_FALSE(MatchesPattern("ab", "a%b%", '%'));
  EXPECT_TRUE(MatchesPattern("a_", "a__", '_'));
  EXPECT_FALSE(MatchesPattern("ab", "a__", '_'));
  EXPECT_FALSE(MatchesPattern("ab", "%c", 0));
  // Without an escape character a zero is a character as any other.
  EXPECT_TRUE(MatchesPattern(std::string_view("\0b", 2), std::string_view("\0_", 2), 0));
}

TEST_F(LikeFunction, OfNullIsNull)
{
  EXPECT_EQ(Value("NULL LIKE 'a'"), "NULL");
  EXPECT_EQ(Value("'a' LIKE NULL"), "NULL");
  EXPECT_EQ(Value("'a' LIKE 'a' ESCAPE NULL"), "NULL");
}

TEST_F(LikeFunction, EscapeIsOneCharacter)
{
  EXPECT_EQ(Value("'a_b' LIKE 'aä_b' ESCAPE 'ä'"), "1");
  EXPECT_EQ(Value("'axb' LIKE 'aä_b' ESCAPE 'ä'"), "0");
  for (const char* escape : {"''", "'ab'"})
    EXPECT_EQ(Value(std::string("'a' LIKE 'a' ESCAPE ") + escape),
              "ESCAPE expression must be a single character");
}

TEST_F(LikeFunction, ErrorsOfStatementsHaveTheirStates)
{
  ASSERT_EQ(State("CREATE TABLE [T] ([A] INTEGER PRIMARY KEY, [B])"), "none");
  EXPECT_EQ(State("INSERT INTO [T] ([A],[B]) VALUES (1)"), "21S01");
  EXPECT_EQ(State("INSERT INTO [T] VALUES (1)"), "21S01");
  EXPECT_EQ(State("INSERT INTO [T] ([A]) VALUES ('x')"), "22018");
  EXPECT_EQ(State("SELECT [all values for it](1)"), "42000");
  sqlite3_limit(database, SQLITE_LIMIT_LENGTH, 1000);
  EXPECT_EQ(State("SELECT ZEROBLOB(2000)"), "22001");
}

TEST_F(LikeFunction, OtherErrorsAreToldByTheirCodes)
{
  const std::pair<int, const char*> codes[] = {
      {SQLITE_PERM, "42000"},      {SQLITE_AUTH, "42000"},        {SQLITE_READONLY, "42000"},
      {SQLITE_NOMEM, "HY001"},     {SQLITE_BUSY, "HYT00"},        {SQLITE_CONSTRAINT, "23000"},
      {SQLITE_INTERRUPT, "HY008"}, {SQLITE_IOERR_WRITE, "HY000"}, {SQLITE_FULL, "HY000"}};
  for (const auto& [code, state] : codes) {
    Diagnostics diagnostics;
    EXPECT_EQ(FailFromSqlite(diagnostics, database, code), SQL_ERROR);
    EXPECT_EQ(std::string(diagnostics.Record(0).state), state) << code;
    EXPECT_EQ(diagnostics.Record(0).nativeCode, code);
  }
}

TEST(FirstWord, MayHaveLettersOfEveryAlphabet)
{
  EXPECT_EQ(FirstWord("größe_$1 x"), "größe_$1");
  EXPECT_EQ(FirstWord("{x}"), "");
  EXPECT_EQ(FirstWord("\x01x"), "");
}

TEST(VerbBehindWith, IsNoneWhereThereIsNone)
{
  EXPECT_EQ(VerbBehindWith("WITH [select] AS (SELECT 1), 'x' 5"), "");
  EXPECT_EQ(VerbBehindWith("WITH x AS (SELECT 1) (delete) replace INTO t"), "replace");
}

TEST(ReplaceEscapeSequences, LeavesABraceThatClosesNothing)
{
  EXPECT_EQ(ReplaceEscapeSequences("SELECT 1 } AS x"), "SELECT 1 } AS x");
  EXPECT_EQ(ReplaceEscapeSequences("x LIKE 'a' {escape '\\'}"), "x LIKE 'a' ESCAPE '\\'");
}
