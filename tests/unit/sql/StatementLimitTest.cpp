// The longest statements, and the end of the process when one doesn't fit.
#include "sql/CreateTableSql.h"
#include "sql/RowSql.h"
#include "sql/ValueSql.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/sql/TableRow.h"

#include <errno.h>

namespace {

constexpr size_t Longest = 524287;

const auto EndedAbnormally = testing::ExitedWithCode(3);
const char* const OnlyTheEnd = "^TerminateProcess 0xC0000417\n$";

std::string Filler(size_t length)
{
  return std::string(length, 'x');
}

// Builds a statement around a text that it holds once, as beginning, text and ending.
struct Builder
{
  const char* beginning;
  const char* ending;
  QulString (*build)(const std::string& text);
};

const Builder Builders[] = {
    {"'", "'",
     [](const std::string& text) { return ValueSql(TableRow("T").Text("A", text).Last()); }},
    {"'", "'",
     [](const std::string& text) {
       TableRow row("T");
       row.Text("A", "x").Alternate("B").Text("B", text);
       return EffectiveValueSql(row.schema, *row.schema.columns[0]);
     }},
    {"[", "] TEXT(10) NOT NULL",
     [](const std::string& text) {
       return ColumnDefinitionSql(TableRow("T").Column(text, SQL_WVARCHAR).Last());
     }},
    {"CREATE TABLE ", " ([A] BIT NULL);",
     [](const std::string& text) {
       return CreateTableSql(TableRow(text).Column("A", SQL_BIT).Nullable().schema);
     }},
    {"CREATE TABLE T ([", "] BIT NULL ,[B] BIT NULL,PRIMARY KEY ([B]));",
     [](const std::string& text) {
       TableRow row("T");
       row.Column(text, SQL_BIT).Nullable().Column("B", SQL_BIT).Nullable().Key();
       return CreateTableSql(row.schema);
     }},
    {"DELETE FROM T WHERE [A]='", "' AND [B]=1;",
     [](const std::string& text) {
       return DeleteByKeySql(TableRow("T").Text("A", text).Key().Integer("B", 1).Key().schema);
     }},
    {"DELETE FROM ", " WHERE ;",
     [](const std::string& text) { return DeleteByKeySql(TableRow(text).schema); }},
    {"DELETE FROM T WHERE [B]=1 AND [A]='", "';",
     [](const std::string& text) {
       return DeleteMatchingSql(TableRow("S").Integer("B", 1).Text("A", text).schema,
                                TableRow("T").Integer("B", 0).Text("A", "").schema);
     }},
    {"UPDATE [T]  SET [A]='", "' WHERE [B]=1",
     [](const std::string& text) {
       return UpdateSql(TableRow("S").Integer("B", 1).Text("A", text).schema,
                        TableRow("T").Integer("B", 0).Key().Text("A", "").schema);
     }},
    {"UPDATE [T]  SET [B]=1 WHERE [A]='", "'",
     [](const std::string& text) {
       return UpdateSql(TableRow("S").Integer("B", 1).Text("A", text).schema,
                        TableRow("T").Integer("B", 0).Text("A", "").Key().schema);
     }},
    {"INSERT INTO [T] ([B],[A]) VALUES (1,'", "');",
     [](const std::string& text) {
       return InsertSql(TableRow("S").Integer("B", 1).Text("A", text).schema,
                        TableRow("T").Integer("B", 0).Text("A", "").schema);
     }},
    {"INSERT INTO [", "] ([A]) VALUES (-0.500000);",
     [](const std::string& text) {
       return InsertSql(TableRow("S").Number("A", -0.5).schema,
                        TableRow(text).Number("A", 0).schema);
     }},
};

// The text that makes the statement of that length.
std::string TextFor(const Builder& builder, size_t length)
{
  return Filler(length - strlen(builder.beginning) - strlen(builder.ending));
}

// One piece behind so many characters that are there already.
struct Piece
{
  size_t length;
  void (*append)(StatementText& statement);
};

const Piece Pieces[] = {
    {1, [](StatementText& statement) { statement.Append(L"x"); }},
    {1, [](StatementText& statement) { statement.Append(L'x'); }},
    {5, [](StatementText& statement) { statement.Append(L"12345"); }},
    {5, [](StatementText& statement) { statement.AppendName(L"abc"); }},
    {5, [](StatementText& statement) { statement.AppendQuoted(L"abc", 3); }},
    {6, [](StatementText& statement) { statement.AppendQuoted(L"a'c", 3); }},
    {6, [](StatementText& statement) { statement.AppendQuoted(L"ab'", 3); }},
    {2, [](StatementText& statement) { statement.AppendQuoted(L"", 0); }},
    {1, [](StatementText& statement) { statement.AppendInteger(0); }},
    {11, [](StatementText& statement) { statement.AppendInteger(INT32_MIN); }},
    {8, [](StatementText& statement) { statement.AppendDecimals(1.5); }},
    {9, [](StatementText& statement) { statement.AppendDecimals(-1.5); }},
    {8, [](StatementText& statement) { statement.AppendDecimals(0.0078125); }},
    {28, [](StatementText& statement) { statement.AppendDecimals(1e20); }},
};

void AppendBehind(size_t before, const Piece& piece)
{
  static const WideText filler(Filler(Longest));
  StatementText statement;
  statement.Append(filler.c_str() + (Longest - before));
  piece.append(statement);
  EXPECT_EQ(wcslen(statement.Text()), before + piece.length);
}

class StatementLimit : public PlatformTest
{
};
class StatementLimitDeathTest : public PlatformTest
{
};

}  // namespace

TEST_F(StatementLimit, HoldsTheLongestStatementOfEachBuilder)
{
  for (const Builder& builder : Builders) {
    const std::string text = TextFor(builder, Longest);
    const QulString statement = builder.build(text);
    EXPECT_EQ(statement.Length(), static_cast<int>(Longest)) << builder.beginning;
    EXPECT_TRUE(TextOf(statement) == builder.beginning + text + builder.ending)
        << builder.beginning;
  }
}

TEST_F(StatementLimitDeathTest, OneCharacterMoreEndsTheProcessInEachBuilder)
{
  for (const Builder& builder : Builders) {
    const std::string text = TextFor(builder, Longest + 1);
    EXPECT_EXIT((void)builder.build(text), EndedAbnormally, OnlyTheEnd) << builder.beginning;
  }
}

TEST_F(StatementLimit, HoldsEachPieceUpToTheEnd)
{
  for (const Piece& piece : Pieces)
    AppendBehind(Longest - piece.length, piece);
}

TEST_F(StatementLimitDeathTest, EachPieceThatDoesNotFitEndsTheProcess)
{
  for (const Piece& piece : Pieces) {
    EXPECT_EXIT(AppendBehind(Longest + 1 - piece.length, piece), EndedAbnormally, OnlyTheEnd)
        << piece.length;
  }
}

TEST_F(StatementLimit, HoldsQuotedTextsOfEachLengthUpToTheEnd)
{
  const WideText filler(Filler(Longest));
  for (size_t length = 1; length <= 40; ++length) {
    for (const size_t quote : {size_t{0}, length / 2, length - 1, length}) {
      std::string text = Filler(length);
      std::string literal = "'" + text + "'";
      if (quote < length) {
        text[quote] = '\'';
        literal.insert(quote + 1, "'");
        literal[quote + 2] = '\'';
      }
      StatementText statement;
      statement.Append(filler.c_str() + literal.size());
      statement.AppendQuoted(WideText(text).c_str(), length);
      EXPECT_EQ(Utf8(statement.Text() + Longest - literal.size()), literal);
    }
  }
}

TEST_F(StatementLimitDeathTest, AQuotedTextThatMissesOneCharacterEndsTheProcess)
{
  const WideText filler(Filler(Longest));
  for (const size_t length : {1u, 7u, 8u, 9u, 16u, 17u}) {
    EXPECT_EXIT(
        {
          StatementText statement;
          statement.Append(filler.c_str() + length + 1);
          statement.AppendQuoted(WideText(Filler(length)).c_str(), length);
        },
        EndedAbnormally, OnlyTheEnd)
        << length;
  }
}

TEST_F(StatementLimitDeathTest, AQuotedTextThatMissesManyCharactersEndsTheProcess)
{
  const WideText filler(Filler(Longest));
  for (const char* const piece : {"xxxxxxxx", "xxxxxxx'", "''"}) {
    const WideText text(std::string(piece) + piece + piece + piece + piece);
    for (size_t room = 7; room <= 18; ++room) {
      EXPECT_EXIT(
          {
            StatementText statement;
            statement.Append(filler.c_str() + room);
            statement.AppendQuoted(text.c_str(), text.Length());
          },
          EndedAbnormally, OnlyTheEnd)
          << piece << room;
    }
  }
}

TEST_F(StatementLimit, HoldsNothingMoreBehindTheLongestStatement)
{
  StatementText statement;
  statement.Append(WideText(Filler(Longest)).c_str());
  statement.Append(L"");
  EXPECT_EQ(wcslen(statement.Text()), Longest);
}

TEST_F(StatementLimitDeathTest, CountsEachQuoteTwice)
{
  const std::string quotes((Longest - 3) / 2, '\'');
  EXPECT_EQ(ValueSql(TableRow("T").Text("A", quotes + "x").Last()).Length(),
            static_cast<int>(Longest));
  EXPECT_EXIT((void)ValueSql(TableRow("T").Text("A", quotes + "'").Last()), EndedAbnormally,
              OnlyTheEnd);
}

TEST_F(StatementLimitDeathTest, AFormattedNumberThatFailsEndsTheProcess)
{
  EXPECT_EXIT(
      {
        FailCall("vswprintf_s", 1, ERANGE);
        StatementText statement;
        statement.AppendDecimals(1e300);
      },
      EndedAbnormally, OnlyTheEnd);
}

TEST_F(StatementLimitDeathTest, AValueThatAloneIsTooLongEndsTheProcess)
{
  TableRow row("T");
  const TableColumn& column = row.Column("A", SQL_WVARCHAR, QulStringLimit - 1).Last();
  for (int i = 0; i < QulStringLimit; ++i)
    column.valueBuffer[i] = L'x';
  EXPECT_EXIT((void)ValueSql(column), EndedAbnormally, OnlyTheEnd);
}
