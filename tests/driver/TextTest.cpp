#include "tests/driver/ConformanceTest.h"
#include "tests/driver/Utf.h"

namespace {

class Text : public ConformanceTest
{
protected:
  // Stores a text through a literal in a column of the type, and gives what comes back.
  Lines Returned(const std::string& type, const std::string& literal)
  {
    session.Run("DROP TABLE [Kept]");
    Make("CREATE TABLE [Kept] ([A] " + type + ")");
    Make("INSERT INTO [Kept] ([A]) VALUES ('" + literal + "')");
    return session.Select("SELECT [A] FROM [Kept]");
  }
};

class TextMatch : public ConformanceTest
{
protected:
  void SetUp() override
  {
    ConformanceTest::SetUp();
    Make("CREATE TABLE [T] ([Name] TEXT(50) PRIMARY KEY, [Memo] MEMO, [D] DATETIME)");
  }

  Lines NamesWhere(const std::string& condition)
  {
    return session.Select("SELECT [Name] FROM [T] WHERE " + condition);
  }
};

}  // namespace

TEST_P(Text, IsTheSameTextInEveryTextType)
{
  for (const char* type : {"TEXT(50)", "VARCHAR(50)", "CHAR(50)", "MEMO", "TEXT", "LONGTEXT"}) {
    for (const char* text : {"007", "1e5", "", "  a  ", "0", "-0", "1.0", "0x10", "NULL", " ",
                             "9999999999999999999999", "Infinity", "TRUE", "12abc", "+5"}) {
      EXPECT_EQ(Returned(type, text), Lines{text}) << type;
    }
  }
}

TEST_P(Text, IsTheSameTextInAColumnAddedLater)
{
  Make("CREATE TABLE [Added] ([A] LONG)");
  Make("ALTER TABLE [Added] ADD COLUMN [B] MEMO");
  Make("ALTER TABLE [Added] ADD [C] TEXT(20)");
  Make("INSERT INTO [Added] VALUES (1,'007','1e5')");
  EXPECT_EQ(session.Select("SELECT * FROM [Added]"), Lines{"1|007|1e5"});
}

TEST_P(Text, LongerThanDeclaredIsKeptOrRefusedButNeverCut)
{
  Make("CREATE TABLE [T] ([A] TEXT(3))");
  if (session.Run("INSERT INTO [T] VALUES ('abcdef')") == SQL_SUCCESS)
    EXPECT_EQ(session.Select("SELECT [A] FROM [T]"), Lines{"abcdef"});
  else
    EXPECT_EQ(session.State(), "22001");
}

TEST_P(Text, QuotesAreDoubledInLiterals)
{
  EXPECT_EQ(Returned("TEXT(50)", "it''s"), Lines{"it's"});
}

TEST_P(Text, LineEndsAreKept)
{
  EXPECT_EQ(Returned("MEMO", "a\r\nb\n\tc"), Lines{"a\r\nb\n\tc"});
}

TEST_P(Text, BeyondAsciiSurvivesBothWays)
{
  for (const char* text : {"Größe", "žluťoučký kůň", "Ελληνικά", "日本語", "“quoted” – dash"}) {
    EXPECT_EQ(Returned("TEXT(50)", text), Lines{text});
    EXPECT_EQ(Returned("MEMO", text), Lines{text});
  }
}

TEST_P(Text, SurrogatePairsSurviveInAParameterAndBack)
{
  const std::string beyond = "a\xF0\x9F\x94\xA9z\xF0\x90\x80\x80";
  TextArgument text = calls.Argument(beyond);
  SQLLEN length = text.Bytes();
  Make("CREATE TABLE [T] ([A] TEXT(50))");
  ASSERT_EQ(calls.BindParameter(stmt, 1, SQL_PARAM_INPUT, calls.TextType(), SQL_WVARCHAR, 50, 0,
                                text.Data(), length, &length),
            SQL_SUCCESS);
  Make("INSERT INTO [T] VALUES (?)");
  EXPECT_EQ(session.Select("SELECT [A], LENGTH([A]) FROM [T]"), Lines{beyond + "|4"});
}

TEST_P(Text, SurrogatePairsAreTwoUnitsOfWideText)
{
  MakeRow("SELECT CAST(x'61F09F94A97A' AS TEXT)");
  TextBuffer text(true, 10);
  SQLLEN length = 0;
  EXPECT_EQ(calls.GetData(stmt, 1, SQL_C_WCHAR, text.Data(), text.Bytes(), &length), SQL_SUCCESS);
  EXPECT_EQ(length, 8);
  EXPECT_EQ(text.Wide()[1], 0xD83D);
  EXPECT_EQ(text.Wide()[2], 0xDD29);
  EXPECT_EQ(text.Wide()[4], 0);
}

TEST_P(Text, PiecesOfTextBeyondAsciiMakeUpTheWhole)
{
  const std::string whole = "a\xF0\x9F\x94\xA9ß\xF0\x9F\x94\xA9\xE2\x82\xACz";
  for (size_t units = 2; units < 8; ++units) {
    MakeRow("SELECT CAST(x'61F09F94A9C39FF09F94A9E282AC7A' AS TEXT)");
    std::string narrow;
    std::u16string wide;
    SQLRETURN result = SQL_SUCCESS_WITH_INFO;
    for (int piece = 0; piece < 40 && result == SQL_SUCCESS_WITH_INFO; ++piece) {
      TextBuffer text = calls.Buffer(units);
      result = calls.GetData(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), nullptr);
      EXPECT_TRUE(text.IsKeptInside());
      if (calls.IsWide())
        wide += reinterpret_cast<const char16_t*>(text.Wide());
      else
        narrow += reinterpret_cast<const char*>(text.Narrow());
    }
    EXPECT_EQ(result, SQL_SUCCESS);
    EXPECT_EQ(calls.IsWide() ? Utf8(wide) : narrow, whole) << units;
  }
}

TEST_P(Text, InvalidUtf8InTheFileDoesNotHarmTheReader)
{
  Make("CREATE TABLE [T] ([A] TEXT(50))");
  for (const char* bytes : {"FF", "C3", "61C3", "E282", "F09F94", "EDA0BD", "C080", "F8808080"})
    Make("INSERT INTO [T] VALUES (CAST(x'" + std::string(bytes) + "' AS TEXT))");
  EXPECT_EQ(session.Select("SELECT [A] FROM [T]").size(), 8U);
  EXPECT_EQ(session.Select("SELECT [A] FROM [T] WHERE [A]='ä' ORDER BY [A]").size(), 0U);
  EXPECT_EQ(session.Select("SELECT [A] FROM [T] ORDER BY [A]").size(), 8U);
}

TEST_P(TextMatch, ConditionsDisregardCase)
{
  Make("INSERT INTO [T] ([Name],[Memo]) VALUES ('Bolt','Hexagon Head')");
  EXPECT_EQ(NamesWhere("[Name]='BOLT'"), Lines{"Bolt"});
  EXPECT_EQ(NamesWhere("[Name]='bolts'"), Lines{});
  EXPECT_EQ(NamesWhere("[Memo]='hexagon head'"), Lines{"Bolt"});
  EXPECT_EQ(NamesWhere("[Name]<>'bolt'"), Lines{});
  EXPECT_EQ(NamesWhere("[Name] IN ('bolt','nut')"), Lines{"Bolt"});
  EXPECT_EQ(NamesWhere("[Name] LIKE 'bo%'"), Lines{"Bolt"});
  EXPECT_EQ(session.Run("UPDATE [T] SET [Memo]='x' WHERE [Name]='bOLT'"), SQL_SUCCESS);
}

TEST_P(TextMatch, ConditionsDisregardCaseBeyondAscii)
{
  Make("INSERT INTO [T] ([Name]) VALUES ('Ärger')");
  EXPECT_EQ(NamesWhere("[Name]='ÄRGER'"), Lines{"Ärger"});
  EXPECT_EQ(NamesWhere("[Name]='ärger'"), Lines{"Ärger"});
  EXPECT_EQ(NamesWhere("[Name]='Arger'"), Lines{});
  Make("INSERT INTO [T] ([Name]) VALUES ('ΩΜΕΓΑ')");
  EXPECT_EQ(NamesWhere("[Name]='ωμεγα'"), Lines{"ΩΜΕΓΑ"});
}

TEST_P(TextMatch, KeysDisregardCase)
{
  Make("INSERT INTO [T] ([Name]) VALUES ('Ärger')");
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Name]) VALUES ('ÄRGER')"), SQL_ERROR);
  EXPECT_EQ(session.State(), "23000");
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Name]) VALUES ('ÄRGER ')"), SQL_SUCCESS);
}

TEST_P(TextMatch, OrderDisregardsCase)
{
  for (const char* name : {"b", "C", "a", "B2", "Ä", "z"})
    Make("INSERT INTO [T] ([Name]) VALUES ('" + std::string(name) + "')");
  EXPECT_EQ(session.Select("SELECT [Name] FROM [T] WHERE [Name]<'zz' ORDER BY [Name]"),
            (Lines{"a", "b", "B2", "C", "z"}));
}

TEST_P(TextMatch, DatesMatchInEitherKindOfText)
{
  Make("INSERT INTO [T] ([Name],[D]) VALUES ('iso','2007-03-09 00:00:00')");
  Make("INSERT INTO [T] ([Name],[D]) VALUES ('day','9/3/2007')");
  Make("INSERT INTO [T] ([Name],[D]) VALUES ('time','9/3/2007 13:14:15')");
  EXPECT_EQ(NamesWhere("[D]='9/3/2007' ORDER BY [Name]"), (Lines{"day", "iso"}));
  EXPECT_EQ(NamesWhere("[D]='2007-03-09' ORDER BY [Name]"), (Lines{"day", "iso"}));
  EXPECT_EQ(NamesWhere("[D]='2007-03-09 13:14:15'"), Lines{"time"});
}

TEST_P(TextMatch, DatesAreOrderedByTheirMoments)
{
  Make("INSERT INTO [T] ([Name],[D]) VALUES ('second','10/2/2007')");
  Make("INSERT INTO [T] ([Name],[D]) VALUES ('third','9/3/2007')");
  Make("INSERT INTO [T] ([Name],[D]) VALUES ('first','2006-12-31')");
  EXPECT_EQ(NamesWhere("1=1 ORDER BY [D]"), (Lines{"first", "second", "third"}));
  EXPECT_EQ(NamesWhere("[D]>'1/3/2007'"), Lines{"third"});
}

TEST_P(TextMatch, UnreadableDatesCompareAsText)
{
  Make("INSERT INTO [T] ([Name],[D]) VALUES ('odd','some day')");
  EXPECT_EQ(NamesWhere("[D]='some day'"), Lines{"odd"});
  EXPECT_EQ(NamesWhere("[D]='2007-03-09'"), Lines{});
}

INSTANTIATE_TEST_SUITE_P(Each, Text, AllWays(), WayName);
INSTANTIATE_TEST_SUITE_P(Each, TextMatch, AllWays(), WayName);
