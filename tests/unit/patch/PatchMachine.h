#ifndef UNIT_PATCHMACHINE_H
#define UNIT_PATCHMACHINE_H

// A patch and the database that it is about to change, on a machine whose ODBC is scripted. The
// target's connection is dbc#1 and the patch's dbc#2, and the first statement of a step is stmt#8.

#include "database/UpdateTable.h"
#include "tests/unit/database/DatabaseMachine.h"

class PatchMachine : public DatabaseMachine
{
protected:
  void TearDown() override
  {
    CloseBoth();
    DatabaseMachine::TearDown();
  }

  void OpenBoth()
  {
    target = OpenTarget();
    patch = OpenPatch();
    patch->targetDatabase = target.get();
  }

  void CloseBoth()
  {
    patch.reset();
    target.reset();
  }

  // A connection takes its statements with it, so this is asked before.
  static void ExpectNoStatements() { EXPECT_EQ(Odbc().OpenStatements(), 0); }

  // What was executed and is no query, in order.
  static Lines Changes()
  {
    Lines changes;
    for (const std::string& line : DiaryOf({"SQLExecDirectW"})) {
      const size_t begin = line.find('"') + 1;
      const std::string statement = line.substr(begin, line.rfind('"') - begin);
      if (!statement.starts_with("SELECT "))
        changes.push_back(statement);
    }
    return changes;
  }

  // NewParts of the patch and Parts of the target have a number and a name.
  static std::vector<OdbcColumn> PartsColumns()
  {
    return {{"Id", SQL_INTEGER, 10, SQL_NO_NULLS}, {"Name", SQL_WVARCHAR, 30}};
  }
  static void PutSource(const OdbcRows& rows)
  {
    Patch().Columns("NewParts", PartsColumns()).Table("NewParts", rows);
  }
  static void PutTarget() { Target().Columns("Parts", PartsColumns()); }
  static void PutKey(const std::string& column)
  {
    Target().Query(PartsKeyQuery, {{column, "PrimaryKey"}});
  }

  static UpdateStep StepOf(bool deleteRows, bool recreate, bool createIfMissing)
  {
    return {L"QuillBase", L"NewParts", L"Parts", deleteRows, recreate, createIfMissing};
  }
  static UpdateStep MergeStep() { return StepOf(false, false, false); }
  static UpdateStep RecreateStep() { return StepOf(false, true, false); }
  static UpdateStep CreateStep() { return StepOf(false, false, true); }

  // The step alone is what the diary then shows.
  void Run(const UpdateStep& step)
  {
    OpenBoth();
    patch->PatchTable(step);
    ExpectNoStatements();
  }

  static constexpr const char* PartsKeyQuery =
      "SELECT [ColumnName],[TypeProperty] FROM [InfoTableRelations] WHERE [TableName] = 'Parts'";

  std::unique_ptr<QulDatabase> target;
  std::unique_ptr<QulPatchDatabase> patch;
};

#endif
