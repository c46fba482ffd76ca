// Every call of one whole step, in order: the bindings of the catalogue and of the key's query are
// left out, which have tests of their own.
#include "database/QulPatchDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/patch/PatchMachine.h"

namespace {

std::string Allocated(int connection, int statement)
{
  return "SQLAllocHandle(STMT, dbc#" + std::to_string(connection) + ") = 0 stmt#" +
         std::to_string(statement);
}

std::string Freed(int statement)
{
  return "SQLFreeHandle(STMT, stmt#" + std::to_string(statement) + ") = 0";
}

std::string Executed(int statement, const std::string& text, int code = SQL_SUCCESS)
{
  return "SQLExecDirectW(stmt#" + std::to_string(statement) + ", \"" + text +
         "\", -3) = " + std::to_string(code);
}

std::string Fetched(int statement, int code = SQL_SUCCESS)
{
  return "SQLFetch(stmt#" + std::to_string(statement) + ") = " + std::to_string(code);
}

std::string Listed(int statement, const std::string& table)
{
  return "SQLColumnsW(stmt#" + std::to_string(statement) + ", null 0, null 0, \"" + table +
         "\" -3, null 0) = 0";
}

std::string Closed(int statement)
{
  return "SQLCloseCursor(stmt#" + std::to_string(statement) + ") = 0";
}

// Whether there is such a table.
Lines Question(int connection, int statement, const std::string& table, int code)
{
  return {Allocated(connection, statement), Listed(statement, table), Fetched(statement, code),
          Freed(statement)};
}

// The description of a table of two columns.
Lines Description(int connection, int statement, const std::string& table)
{
  return {Allocated(connection, statement),
          Listed(statement, table),
          Fetched(statement),
          Fetched(statement),
          Fetched(statement, SQL_NO_DATA),
          Closed(statement),
          Freed(statement)};
}

Lines Joined(std::initializer_list<Lines> parts)
{
  Lines all;
  for (const Lines& part : parts)
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

class PatchCalls : public PatchMachine
{
protected:
  void SetUp() override
  {
    PutSource({{1, "Bolt"}, {2, "Nut"}});
    Patch().Query("SELECT [Id] FROM NewParts", {{1}, {2}});
    PutKey("Id");
    Target().OtherStatements(SQL_SUCCESS);
  }

  // The key of a table with one key column.
  static Lines KeyOfParts(int statement)
  {
    return {Allocated(1, statement), Executed(statement, PartsKeyQuery),
            Fetched(statement),      Fetched(statement, SQL_NO_DATA),
            Closed(statement),       Freed(statement)};
  }

  static void ExpectCalls(std::initializer_list<Lines> parts)
  {
    EXPECT_EQ(DiaryOf({"SQLAllocHandle", "SQLColumnsW", "SQLExecDirectW", "SQLFetch",
                       "SQLCloseCursor", "SQLFreeHandle", "SQLTablesW", "SQLDisconnect",
                       "SQLSetConnectAttrW", "OutputDebugStringW"}),
              Joined(parts));
  }
};

}  // namespace

TEST_F(PatchCalls, OfAMerge)
{
  PutTarget();
  Target().Statement("UPDATE [Parts]  SET [Name]='Nut' WHERE [Id]=2", SQL_NO_DATA);
  Run(MergeStep());
  ExpectCalls({Question(2, 8, "NewParts", SQL_SUCCESS),
               Question(1, 9, "Parts", SQL_SUCCESS),
               Description(2, 10, "NewParts"),
               KeyOfParts(11),
               Description(1, 12, "Parts"),
               KeyOfParts(13),
               {Allocated(2, 14), Executed(14, "SELECT * FROM NewParts"), Fetched(14),
                Allocated(1, 15), Executed(15, "UPDATE [Parts]  SET [Name]='Bolt' WHERE [Id]=1"),
                Freed(15), Fetched(14), Allocated(1, 16),
                Executed(16, "UPDATE [Parts]  SET [Name]='Nut' WHERE [Id]=2", SQL_NO_DATA),
                Executed(16, "INSERT INTO [Parts] ([Id],[Name]) VALUES (2,'Nut');"), Freed(16),
                Fetched(14, SQL_NO_DATA), Freed(14)}});
}

TEST_F(PatchCalls, OfACopyIntoANewTable)
{
  PutTarget();
  Run(RecreateStep());
  ExpectCalls(
      {Question(2, 8, "NewParts", SQL_SUCCESS),
       Question(1, 9, "Parts", SQL_SUCCESS),
       Description(2, 10, "NewParts"),
       KeyOfParts(11),
       {Allocated(1, 12), Executed(12, "DROP TABLE Parts"), Freed(12), Allocated(1, 13),
        Executed(13,
                 "CREATE TABLE Parts ([Id] LONG NOT NULL ,[Name] TEXT(30) NULL,"
                 "PRIMARY KEY ([Id]));"),
        Freed(13), Allocated(2, 14), Executed(14, "SELECT * FROM NewParts"), Fetched(14),
        Allocated(1, 15), Executed(15, "INSERT INTO [Parts] ([Id],[Name]) VALUES (1,'Bolt');"),
        Freed(15), Fetched(14), Allocated(1, 16),
        Executed(16, "INSERT INTO [Parts] ([Id],[Name]) VALUES (2,'Nut');"), Freed(16),
        Fetched(14, SQL_NO_DATA), Freed(14)}});
}

TEST_F(PatchCalls, OfACreationOfAMissingTable)
{
  PutSource({});
  Run(CreateStep());
  ExpectCalls({Question(2, 8, "NewParts", SQL_SUCCESS),
               Question(1, 9, "Parts", SQL_NO_DATA),
               Description(2, 10, "NewParts"),
               KeyOfParts(11),
               {Allocated(1, 12),
                Executed(12,
                         "CREATE TABLE Parts ([Id] LONG NOT NULL ,[Name] TEXT(30) NULL,"
                         "PRIMARY KEY ([Id]));"),
                Freed(12), Allocated(2, 13), Executed(13, "SELECT * FROM NewParts"),
                Fetched(13, SQL_NO_DATA), Freed(13)}});
}

TEST_F(PatchCalls, OfADeletion)
{
  PutTarget();
  Run(StepOf(true, false, false));
  ExpectCalls({Question(2, 8, "NewParts", SQL_SUCCESS),
               Question(1, 9, "Parts", SQL_SUCCESS),
               Description(2, 10, "NewParts"),
               KeyOfParts(11),
               Description(1, 12, "Parts"),
               KeyOfParts(13),
               {Allocated(2, 14), Executed(14, "SELECT [Id] FROM NewParts"), Fetched(14),
                Allocated(1, 15), Executed(15, "DELETE FROM Parts WHERE [Id]=1;"), Freed(15),
                Fetched(14), Allocated(1, 16), Executed(16, "DELETE FROM Parts WHERE [Id]=2;"),
                Freed(16), Fetched(14, SQL_NO_DATA), Freed(14)}});
}

TEST_F(PatchCalls, OfTwoStepsAreThoseOfEachByItself)
{
  PutTarget();
  Run(CreateStep());
  const size_t once = Diary().size();
  patch->PatchTable(CreateStep());
  EXPECT_EQ(Diary().size(), 2 * once);
  ExpectNoStatements();
}
