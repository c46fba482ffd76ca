// Definitions of tables as people write them too.

#include "driver/TableDefinition.h"

#include <gtest/gtest.h>

TEST(MendTableDefinition, LeavesWhatItDoesNotKnowAlone)
{
  for (const char* sql :
       {"CREATE TABLE", "CREATE TABLE (", "CREATE TABLE [T]", "CREATE TABLE [T] (",
        "CREATE TABLE [T].", "CREATE TABLE IF [T] ([A] MEMO)", "CREATE TABLE IF NOT [T] ([A] MEMO)",
        "CREATE VIEW [V] AS SELECT 1", "ALTER VIEW [V] ADD [A] MEMO", "ALTER TABLE [T] DROP [A]",
        "ALTER TABLE [T] ADD", "CREATE TABLE [T] ()", "CREATE TABLE [T] AS SELECT 1"})
    EXPECT_EQ(MendTableDefinition(sql), sql);
}

TEST(MendTableDefinition, TakesEveryFormOfTheHead)
{
  for (const std::string head : {"CREATE TEMP TABLE [T] ", "CREATE TEMPORARY TABLE T ",
                                 "CREATE TABLE main.[T] ", "CREATE TABLE IF NOT EXISTS [T] "})
    EXPECT_EQ(MendTableDefinition(head + "([A] MEMO)"),
              head + "([A] MEMO TEXT COLLATE KESTREL_TEXT)");
}

TEST(MendTableDefinition, TakesRulesOfTheTableForWhatTheyAre)
{
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] LONG, FOREIGN KEY ([A]) REFERENCES [P] "
                                "([Id]), CHECK ([A] > 1), UNIQUE ([A]))"),
            "CREATE TABLE [T] ([A] LONG,FOREIGN KEY ([A]) REFERENCES [P] ([Id]),CHECK ([A] > 1),"
            "UNIQUE ([A]))");
}

TEST(MendTableDefinition, TakesColumnsThatAreNamedAsRules)
{
  // Neither is followed by what makes it a rule.
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] (PRIMARY LONG, UNIQUE LONG)"),
            "CREATE TABLE [T] (PRIMARY LONG,UNIQUE LONG)");
}

TEST(MendTableDefinition, KeepsAColumnWithoutAType)
{
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A], [B] NOT NULL)"),
            "CREATE TABLE [T] ([A],[B] NOT NULL)");
}

TEST(MendTableDefinition, KeepsATypeThatGoesOnInQuotes)
{
  for (const char* text : {"CREATE TABLE [T] ([U] MEMO 'x' NULL)", "CREATE TABLE T (U LONG [x])"})
    EXPECT_EQ(MendTableDefinition(text), text);
}

TEST(MendTableDefinition, NamesOfAKeyMayBeQuotedInAnyWayOrNotAtAll)
{
  for (const char* name : {"[A]", "\"A\"", "`A`", "a"})
    EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] COUNTER, PRIMARY KEY (" +
                                  std::string(name) + "))"),
              "CREATE TABLE [T] ([A] INTEGER NOT NULL,PRIMARY KEY (" + std::string(name) + "))");
}

TEST(MendTableDefinition, KeyThatIsAWholeNumberDoesNotCount)
{
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] INTEGER PRIMARY KEY)"),
            "CREATE TABLE [T] ([A] INT PRIMARY KEY NOT NULL)");
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] INTEGER PRIMARY KEY AUTOINCREMENT)"),
            "CREATE TABLE [T] ([A] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL)");
}

TEST(MendTableDefinition, TypesThatKeepTheirValuesAlreadyAreNotMended)
{
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] CLOB, [B] BLOB)"),
            "CREATE TABLE [T] ([A] CLOB COLLATE KESTREL_TEXT,[B] BLOB)");
  // A word that SQLite would take for a number's.
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] NOTE PRINTED)"),
            "CREATE TABLE [T] ([A] NOTE PRINTED TEXT COLLATE KESTREL_TEXT)");
}

TEST(MendTableDefinition, KeepsACollationThatIsGiven)
{
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] TEXT(5) COLLATE NOCASE)"),
            "CREATE TABLE [T] ([A] TEXT(5) COLLATE NOCASE)");
}

TEST(MendTableDefinition, EndsWhereTheStatementEnds)
{
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] LONG"), "CREATE TABLE [T] ([A] LONG");
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] TEXT(5"),
            "CREATE TABLE [T] ([A] TEXT(5 COLLATE KESTREL_TEXT");
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] LONG,"), "CREATE TABLE [T] ([A] LONG,");
  EXPECT_EQ(MendTableDefinition("CREATE TABLE [T] ([A] LONG, )"), "CREATE TABLE [T] ([A] LONG,)");
  EXPECT_EQ(MendTableDefinition("ALTER TABLE [T] ADD [A] LONG;"), "ALTER TABLE [T] ADD [A] LONG;");
}
