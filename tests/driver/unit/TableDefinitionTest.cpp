#include "driver/TableDefinition.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <vector>

#include "driver/Collation.h"

namespace {

// A database in memory that takes mended definitions.
class TableDefinition : public testing::Test
{
protected:
  TableDefinition()
  {
    EXPECT_EQ(sqlite3_open(":memory:", &database), SQLITE_OK);
    EXPECT_EQ(RegisterCollations(database), SQLITE_OK);
  }
  ~TableDefinition() override { sqlite3_close(database); }

  void Execute(const std::string& sql)
  {
    const std::string mended = MendTableDefinition(sql);
    EXPECT_EQ(sqlite3_exec(database, mended.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database) << " in " << mended;
  }

  std::string Value(const std::string& sql)
  {
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    std::string value = "no row";
    if (sqlite3_step(statement) == SQLITE_ROW) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
      value = text == nullptr ? "NULL" : text;
    }
    sqlite3_finalize(statement);
    return value;
  }

  sqlite3* database = nullptr;
};

}  // namespace

TEST_F(TableDefinition, KeepsTextOfEveryTextType)
{
  for (const char* type : {"MEMO", "memo", "TEXT(5)", "Text ( 5 )", "CHAR(5)", "VARCHAR",
                           "LONGTEXT", "LONGCHAR", "DATETIME", "DATE"}) {
    Execute("CREATE TABLE [T] ([A] " + std::string(type) + ")");
    Execute("INSERT INTO [T] VALUES ('007')");
    EXPECT_EQ(Value("SELECT [A] FROM [T]"), "007") << type;
    Execute("DROP TABLE [T]");
  }
}

TEST_F(TableDefinition, KeepsTheFirstWordOfEachType)
{
  Execute("CREATE TABLE [T] ([A] MEMO, [B] TEXT(50), [C] DATETIME NOT NULL)");
  EXPECT_EQ(Value("SELECT type FROM pragma_table_info('T') WHERE name='A'").substr(0, 4), "MEMO");
  EXPECT_EQ(Value("SELECT type FROM pragma_table_info('T') WHERE name='B'").substr(0, 8),
            "TEXT(50)");
  EXPECT_EQ(Value("SELECT type FROM pragma_table_info('T') WHERE name='C'").substr(0, 8),
            "DATETIME");
  EXPECT_EQ(Value("SELECT [notnull] FROM pragma_table_info('T') WHERE name='C'"), "1");
}

TEST_F(TableDefinition, ConstraintsSurvive)
{
  Execute(
      "CREATE TABLE [T] ([K] TEXT(5) NOT NULL PRIMARY KEY, [U] MEMO UNIQUE, "
      "[D] TEXT(5) DEFAULT 'a, b) c' NULL, [E] LONG DEFAULT (1+2), [F] DATETIME DEFAULT "
      "'1/2/2003')");
  Execute("INSERT INTO [T] ([K],[U]) VALUES ('k','u')");
  EXPECT_EQ(Value("SELECT [D]||[E]||[F] FROM [T]"), "a, b) c31/2/2003");
  EXPECT_EQ(Value("SELECT COUNT(*) FROM [T] WHERE [K]='K' AND [U]='U'"), "1");
  EXPECT_EQ(Value("SELECT pk FROM pragma_table_info('T') WHERE name='K'"), "1");
  EXPECT_EQ(
      sqlite3_exec(database, "INSERT INTO T (K,U) VALUES ('x','U')", nullptr, nullptr, nullptr),
      SQLITE_CONSTRAINT);
}

TEST_F(TableDefinition, TableConstraintsSurvive)
{
  Execute(
      "CREATE TABLE [T] ([A] TEXT(5), [B] LONG, CONSTRAINT [key] PRIMARY KEY ([A],[B]), "
      "UNIQUE ([B]), CHECK ([B] < 9))");
  EXPECT_EQ(Value("SELECT pk FROM pragma_table_info('T') WHERE name='B'"), "2");
  EXPECT_EQ(Value("SELECT COUNT(*) FROM pragma_table_info('T')"), "2");
  Execute("INSERT INTO [T] VALUES ('x',1)");
  EXPECT_NE(sqlite3_exec(database, "INSERT INTO T VALUES ('y',1)", nullptr, nullptr, nullptr),
            SQLITE_OK);
  EXPECT_NE(sqlite3_exec(database, "INSERT INTO T VALUES ('y',9)", nullptr, nullptr, nullptr),
            SQLITE_OK);
}

TEST_F(TableDefinition, OddNamesAreNoTypes)
{
  Execute(
      "CREATE TABLE [a, b) MEMO] ([PRIMARY] MEMO, \"KEY\"\"(\" TEXT(5), `MEMO` LONG, "
      "[MEMO, x] MEMO, [DATE] DATE)");
  EXPECT_EQ(Value("SELECT COUNT(*) FROM pragma_table_info('a, b) MEMO')"), "5");
  EXPECT_EQ(Value("SELECT type FROM pragma_table_info('a, b) MEMO') WHERE name='MEMO'"), "LONG");
}

TEST_F(TableDefinition, CommentsAndLineEndsAreOfNoWeight)
{
  Execute("-- a table\nCREATE\tTABLE [T] -- (x MEMO)\r\n(\n[A] /* TEXT */ MEMO\n,[B]\tLONG);");
  Execute("INSERT INTO [T] VALUES ('1e5', 2)");
  EXPECT_EQ(Value("SELECT [A] FROM [T]"), "1e5");
}

TEST_F(TableDefinition, CounterCountsAloneAsTheKey)
{
  Execute("CREATE TABLE [T] ([Id] COUNTER PRIMARY KEY, [A] MEMO)");
  Execute("INSERT INTO [T] ([A]) VALUES ('x')");
  EXPECT_EQ(Value("SELECT [Id] FROM [T]"), "1");
  Execute("CREATE TABLE [U] ([Id] COUNTER, [A] MEMO, PRIMARY KEY ([Id]))");
  Execute("INSERT INTO [U] ([A]) VALUES ('x')");
  EXPECT_EQ(Value("SELECT [Id] FROM [U]"), "1");
  Execute("CREATE TABLE [V] ([Id] COUNTER, [A] MEMO)");
  Execute("INSERT INTO [V] ([Id],[A]) VALUES (7,'x')");
  EXPECT_EQ(Value("SELECT [Id] FROM [V]"), "7");
}

TEST_F(TableDefinition, AddedColumnsAreMendedToo)
{
  Execute("CREATE TABLE [T] ([A] LONG)");
  Execute("ALTER TABLE [T] ADD COLUMN [B] MEMO");
  Execute("alter table T add [C] TEXT(9) DEFAULT '08'");
  Execute("INSERT INTO [T] ([A],[B]) VALUES (1,'007')");
  EXPECT_EQ(Value("SELECT [B]||[C] FROM [T] WHERE [C]='08'"), "00708");
}

TEST_F(TableDefinition, NumbersStayNumbers)
{
  Execute("CREATE TABLE [T] ([A] LONG, [B] DOUBLE, [C] BIT, [D] CURRENCY, [E] BYTE)");
  Execute("INSERT INTO [T] VALUES ('7','2.5','1','1.25','200')");
  EXPECT_EQ(
      Value("SELECT typeof([A])||typeof([B])||typeof([C])||typeof([D])||typeof([E]) FROM [T]"),
      "integerrealintegerrealinteger");
}

TEST_F(TableDefinition, OtherStatementsComeBackAsTheyAre)
{
  for (const char* sql :
       {"", "CREATE", "CREATE TABLE", "CREATE TABLE [T", "CREATE TABLE [T] AS SELECT 1 AS MEMO",
        "CREATE INDEX [I] ON [T] ([A])", "ALTER TABLE [T] RENAME TO [U]", "ALTER TABLE",
        "SELECT 'CREATE TABLE T (A MEMO)'", "INSERT INTO [T] VALUES ('MEMO')"})
    EXPECT_EQ(MendTableDefinition(sql), sql);
}

TEST_F(TableDefinition, IsLookedForByTheFirstWordAlone)
{
  EXPECT_TRUE(MayDefineTable("CREATE TABLE [T] ([A] MEMO)"));
  EXPECT_TRUE(MayDefineTable("  alter TABLE [T] ADD [A] MEMO"));
  EXPECT_FALSE(MayDefineTable("INSERT INTO [T] VALUES ('CREATE TABLE')"));
  EXPECT_FALSE(MayDefineTable("SELECT 1"));
  EXPECT_FALSE(MayDefineTable(""));
}
