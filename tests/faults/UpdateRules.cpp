#include "tests/faults/UpdateRules.h"

#include "tests/faults/DiaryLine.h"

#include <windows.h>

#include <sql.h>
#include <sqlext.h>

#include <algorithm>

namespace {

using Contents = ExpectedDatabases::Contents;

// The call does what it is asked for, whatever its code says.
bool IsDone(const FailureKind& kind)
{
  return !kind.form.empty();
}

bool Fails(const FailureKind& kind)
{
  return kind.code != SQL_SUCCESS_WITH_INFO;
}

std::string FirstWord(const std::string& text, size_t begin)
{
  return text.substr(begin, text.find_first_of(" (", begin) - begin);
}

std::string TableReadBy(const std::string& query)
{
  const size_t from = query.find(" FROM ");
  return from == std::string::npos ? "" : FirstWord(query, from + 6);
}

// Rows are read in the order in which they were stored; steps in that of their numbers, which is
// the same.
std::string DeleteRowsFrom(const std::string& table, int place)
{
  return "DELETE FROM [" + table + "] WHERE rowid IN (SELECT rowid FROM [" + table +
         "] ORDER BY rowid LIMIT -1 OFFSET " + std::to_string(place - 1) + ")";
}

// How the row begins that a statement is for: with its key, the first column.
std::string RowOf(const std::string& statement)
{
  const bool isInsert = statement.starts_with("INSERT");
  const std::string before = isInsert ? "VALUES" : " WHERE [";
  const size_t key = statement.find(isInsert ? "(" : "=", statement.rfind(before)) + 1;
  const size_t end = std::min(statement.find_first_of(",;)", key), statement.find(" AND ", key));
  return statement.substr(key, end - key) + "|";
}

struct Column
{
  std::string name;
  std::string type;
};

// The n-th column of a table, counted from 1.
Column ColumnOf(const WholeLaunch& whole, const std::string& database, const std::string& table,
                int n)
{
  const std::string& header = whole.before.at(database).at(table).at(0);
  size_t begin = 0;
  for (int i = 1; i < n; ++i)
    begin = header.find(',', begin) + 1;
  const std::string name = FirstWord(header, begin);
  return {name, FirstWord(header, begin + name.size() + 1)};
}

// What a column holds in each row if it was never bound.
std::string LeaveUnread(const WholeLaunch& whole, const std::string& database,
                        const std::string& table, int n)
{
  const Column column = ColumnOf(whole, database, table, n);
  const bool isText = column.type.starts_with("TEXT") || column.type.starts_with("MEMO") ||
                      column.type.starts_with("varchar");
  return "UPDATE [" + table + "] SET [" + column.name + "]=" + (isText ? "''" : "0");
}

// The tables that one star stands for.
void AllowStarsUnexpanded(const WholeLaunch& whole, ExpectedDatabases& expected)
{
  const Contents& without =
      ContentsWith(whole, "Spring.mdb", "DELETE FROM UpdateTable WHERE SourceTable='Grade*'");
  for (const char* table : {"GradeA", "GradeB"})
    expected.AllowTable("QuillRules", table, without);
}

// --- The reading of the small tables, when everything is opened.

bool IsOpening(const LaunchCall& call)
{
  const std::string table = TableReadBy(call.statement);
  return table == "KFVersion" || table == "KFProjectsVersion" || table == "Info" ||
         table == "UpdateTable";
}

// A table that can't be read is one without rows, one that breaks off has those before, and a
// column that isn't delivered is empty.
std::string OpeningChange(const WholeLaunch& whole, const LaunchCall& call, const FailureKind& kind)
{
  const std::string table = TableReadBy(call.statement);
  const bool isPairs = table == "KFVersion" || table == "KFProjectsVersion";
  if (kind.function == "SQLFetch")
    return Fails(kind) ? DeleteRowsFrom(table, call.place) : "";
  if (kind.function != "SQLBindCol")
    return "DELETE FROM " + table;
  if (IsDone(kind))
    return "";
  // Rows without a name or a type count for nothing.
  if (isPairs || (table == "Info" && call.column != 2))
    return "DELETE FROM " + table;
  return LeaveUnread(whole, call.database, table, call.column);
}

ExpectedDatabases ExpectOpening(const WholeLaunch& whole, const LaunchCall& call,
                                const FailureKind& kind)
{
  const std::string table = TableReadBy(call.statement);
  const std::string change =
      whole.before.at(call.database).contains(table) ? OpeningChange(whole, call, kind) : "";
  if (change.empty())
    return ExpectedDatabases(whole.outcome.databases);
  ExpectedDatabases expected(ContentsWith(whole, call.database, change));
  if (IsPatch(call.database))
    return expected;
  // The rows are there to be written to, though they were not read: what seems to have no version
  // gets that of the patches.
  expected.ReplaceTable(call.database, table, whole.outcome.databases);
  if (table == "KFProjectsVersion")
    expected.AllowRows(
        call.database, table,
        {whole.before.at(call.database).at(table)[0], "'BoltSets'|'1'", "'SteelGrades'|'2'"});
  return expected;
}

// --- The writing of versions.

ExpectedDatabases ExpectVersions(const WholeLaunch& whole, const LaunchCall& call,
                                 const FailureKind& kind)
{
  ExpectedDatabases expected(whole.outcome.databases);
  const std::string& database = call.database;
  const std::string projects = "KFProjectsVersion";
  if (call.statement == "columns of " + projects) {
    expected.AllowTable(database, projects, whole.before);
    return expected;
  }
  if (IsDone(kind)) {
    if (call.statement.starts_with("CREATE") && kind.function == "SQLExecDirectW")
      expected.ReplaceTable(
          database, projects,
          {{database, {{projects, {whole.outcome.databases.at(database).at(projects)[0]}}}}});
    return expected;
  }
  if (call.statement.starts_with("CREATE"))
    expected.ReplaceTable(database, projects, {});
  else if (call.statement.starts_with("UPDATE KFVersion"))
    expected.AllowOneRow(database, "KFVersion", RowOf(call.statement));
  else
    expected.AllowOneRow(database, projects, RowOf(call.statement));
  return expected;
}

// --- The steps.

class StepRules
{
public:
  StepRules(const WholeLaunch& wholeLaunch, const LaunchCall& failingCall,
            const FailureKind& failureKind)
      : whole(wholeLaunch),
        call(failingCall),
        kind(failureKind),
        step(wholeLaunch.steps.at(static_cast<size_t>(failingCall.step))),
        expected(wholeLaunch.outcome.databases)
  {
  }

  ExpectedDatabases Expect()
  {
    const bool isPatch = IsPatch(call.database);
    if (call.statement.starts_with("columns of ")) {
      if (call.isLookup)
        ExpectLookup();
      else
        ExpectDescription();
    } else if (isPatch) {
      ExpectRowsRead();
    } else if (!call.statement.starts_with("SELECT ")) {
      // A key that can't be read is the first column, and that is the key of each of the tables.
      ExpectStatement();
    }
    return expected;
  }

private:
  bool IsRecreated() const { return step.table == "Shapes" || step.table == "GradeC"; }
  bool IsDeletion() const { return step.source.starts_with("Old"); }

  void UseTable(const Contents& contents)
  {
    expected.ReplaceTable(step.database, step.table, contents);
  }

  // As without the step; what other steps do to the table is done.
  const Contents& Skipped() const
  {
    return ContentsWith(whole, step.patch,
                        "DELETE FROM UpdateTable WHERE TargetDatabase='" + step.database +
                            "' AND '" + step.table + "' LIKE replace(TargetTable,'*','%') AND '" +
                            step.source + "' LIKE replace(SourceTable,'*','%')||'%'");
  }

  // The catalogue is asked whether a table is there. A connection that gives no statement or
  // answers with a failure has none; an answer that breaks off means that there is one; and one
  // that is not delivered, that there is none.
  void ExpectLookup()
  {
    const bool breaksOff =
        (kind.function == "SQLFetch" && Fails(kind) && kind.code != SQL_NO_DATA) ||
        (kind.function == "SQLColumnsW" && !Fails(kind));
    const bool isBound = kind.function == "SQLBindCol" && IsDone(kind);
    const bool wasThere =
        IsPatch(call.database) || whole.before.at(step.database).contains(step.table);
    if (isBound || breaksOff == wasThere) {
      // What wasn't there and whose column isn't bound is still not there.
      return;
    }
    if (wasThere || breaksOff)
      UseTable(Skipped());
    // One that is made anew is dropped in vain first.
    if (breaksOff && IsRecreated())
      expected.AllowTable(step.database, step.table, whole.outcome.databases);
  }

  // The columns of a table are read. Names, types, sizes and whether there may be no value are what
  // counts.
  void ExpectDescription()
  {
    static const std::set<int> used = {4, 5, 7, 11};
    const bool isSource = IsPatch(call.database);
    const bool isNoFailure =
        (kind.function == "SQLBindCol" && (IsDone(kind) || !used.contains(call.column))) ||
        (kind.function == "SQLAllocHandle" && IsDone(kind));
    if (isNoFailure)
      return;
    if (kind.function == "SQLFetch" && !Fails(kind)) {
      // A column that is described twice: those behind it get the values of their neighbours.
      expected.AllowAnything(step.database, step.table);
      return;
    }
    if (kind.function == "SQLFetch" || kind.function == "SQLBindCol") {
      // Some columns are missing or misunderstood, others have their values all the same. One whose
      // text stands in a missing column for another language keeps its own.
      const Contents& skipped = Skipped();
      expected.AllowTable(step.database, step.table, skipped);
      expected.AllowKnownValues(
          step.database, step.table,
          {&whole.before, &whole.outcome.databases, &skipped, &ContentsInEnglish(whole)});
      return;
    }
    // Without columns no statement is one: what was dropped stays away.
    if (isSource && IsRecreated())
      UseTable({});
    else
      UseTable(Skipped());
  }

  void ExpectRowsRead()
  {
    const std::string& table = step.source;
    if (kind.function == "SQLFetch") {
      if (Fails(kind))
        UseTable(ContentsWith(whole, step.patch, DeleteRowsFrom(table, call.place)));
      else if (call.place == 1)
        expected.AllowOneRow(step.database, step.table, "");  // of values that were never read
    } else if (kind.function == "SQLBindCol") {
      if (!IsDone(kind))
        ExpectUnbound();
    } else if (!IsDone(kind) || (kind.function == "SQLExecDirectW" && !IsDeletion())) {
      // A deletion fetches, whatever the query's code is.
      UseTable(ContentsWith(whole, step.patch, "DELETE FROM [" + table + "]"));
    }
  }

  void ExpectUnbound()
  {
    const Column column = ColumnOf(whole, step.patch, step.source, call.column);
    if (column.type != "DATE") {
      UseTable(ContentsWith(whole, step.patch,
                            LeaveUnread(whole, step.patch, step.source, call.column)));
      return;
    }
    // A date that was never read can be written and not be stored beforehand.
    UseTable(Skipped());
    if (!IsDeletion())
      expected.AllowKnownValues(step.database, step.table, {&whole.outcome.databases});
  }

  void ExpectStatement()
  {
    const bool isExecution = kind.function == "SQLExecDirectW";
    if (call.statement.starts_with("DROP")) {
      // What can't be dropped can't be made anew.
      if (!IsDone(kind))
        UseTable(Skipped());
    } else if (call.statement.starts_with("CREATE")) {
      if (!IsDone(kind))
        UseTable({});
      else if (isExecution)
        UseTable({{step.database,
                   {{step.table, {whole.outcome.databases.at(step.database).at(step.table)[0]}}}}});
    } else if (!IsDone(kind) && !IsMadeUpFor()) {
      expected.AllowOneRow(step.database, step.table, RowOf(call.statement));
    }
  }

  // A row that a change doesn't find is inserted, whatever the change's code is but success.
  bool IsMadeUpFor() const
  {
    return kind.function == "SQLExecDirectW" && Fails(kind) &&
           call.statement.starts_with("UPDATE") && ResultIn(call.line) == SQL_NO_DATA;
  }

  const WholeLaunch& whole;
  const LaunchCall& call;
  const FailureKind& kind;
  const LaunchStep& step;
  ExpectedDatabases expected;
};

// --- Traces.

std::string ConnectionTrace(const LaunchCall& call)
{
  if (call.line.starts_with("SQLAllocHandle(ENV"))
    return "Error in Allocating Environment.";
  if (call.line.starts_with("SQLAllocHandle(DBC"))
    return "Error in Allocating Connection.";
  if (call.line.starts_with("SQLSetEnvAttr"))
    return "Error in Setting ODBC Version.";
  if (call.line.starts_with("SQLSetConnectAttrW"))
    return call.line.find(", 103,") != std::string::npos ? "Error in Setting Login Timeout."
                                                         : "Error in Setting AccessMode.";
  return "Error driver connect to database.";
}

// How the trace of a statement that fails begins; empty if none is due.
std::string StatementTrace(const WholeLaunch& whole, const LaunchCall& call)
{
  const std::string& sql = call.statement;
  if (call.step < 0 || sql.starts_with("INSERT"))
    return sql;
  const std::string& table = whole.steps.at(static_cast<size_t>(call.step)).table;
  if (sql.starts_with("CREATE"))
    return "Unable to create table " + table + "\nSql:" + sql;
  if (sql.starts_with("DROP"))
    return "Unable to drop table " + table;
  if (sql.starts_with("DELETE"))
    return "Unable to delete record! SQL = '" + sql + "'";
  // A change that fails says nothing. The row is there, so that its insertion fails as well.
  return ResultIn(call.line) == SQL_SUCCESS ? "INSERT INTO [" + table + "] (" : "";
}

bool IsClosing(const FailureKind& kind)
{
  return kind.function == "SQLFreeHandle" || kind.function == "SQLDisconnect" ||
         kind.function == "SQLCloseCursor";
}

bool OnlySaysMore(const LaunchCall& call, const FailureKind& kind)
{
  return kind.form == " with info" && call.statement != "tables";
}

std::vector<std::string> Sorted(std::vector<std::string> texts)
{
  std::sort(texts.begin(), texts.end());
  return texts;
}

void RemoveOne(std::vector<std::string>& texts, const std::string& text)
{
  const auto found = std::find(texts.begin(), texts.end(), text);
  if (found != texts.end())
    texts.erase(found);
}

}  // namespace

const Contents& ContentsWith(const WholeLaunch& whole, const std::string& database,
                             const std::string& statements)
{
  RichMachine machine = whole.machine;
  machine.changes[database] = statements;
  return ReferenceLaunch(machine).databases;
}

const Contents& ContentsWithout(const WholeLaunch& whole, const std::set<std::string>& names)
{
  RichMachine machine = whole.machine;
  machine.without = names;
  return ReferenceLaunch(machine).databases;
}

const Contents& ContentsInEnglish(const WholeLaunch& whole)
{
  constexpr uint32_t english = 9;
  RichMachine machine = whole.machine;
  machine.language = english;
  return ReferenceLaunch(machine).databases;
}

ExpectedDatabases ExpectAfter(const WholeLaunch& whole, const LaunchCall& call,
                              const FailureKind& kind)
{
  ExpectedDatabases expected(whole.outcome.databases);
  if (OnlySaysMore(call, kind) || IsClosing(kind))
    return expected;
  if (call.statement == "tables") {
    AllowStarsUnexpanded(whole, expected);
    return expected;
  }
  // What can't be opened is as if it weren't there.
  if (call.statement.empty() && whole.before.contains(call.database)) {
    ExpectedDatabases without(ContentsWithout(whole, {call.database}));
    if (!IsPatch(call.database))
      without.Replace(call.database, whole.before.at(call.database));
    return without;
  }
  if (call.statement.empty() || call.database.empty())
    return expected;
  if (IsOpening(call))
    return ExpectOpening(whole, call, kind);
  return call.step < 0 ? ExpectVersions(whole, call, kind) : StepRules(whole, call, kind).Expect();
}

std::vector<std::string> JudgeTraces(const WholeLaunch& whole, const LaunchCall& call,
                                     const FailureKind& kind,
                                     const std::vector<std::string>& traces)
{
  if (OnlySaysMore(call, kind) || IsClosing(kind))
    return traces == whole.outcome.traces ? std::vector<std::string>()
                                          : std::vector<std::string>{"The traces differ."};
  if (call.statement.empty()) {
    RichMachine machine = whole.machine;
    if (whole.before.contains(call.database))
      machine.without = {call.database};
    std::vector<std::string> expected = ReferenceLaunch(machine).traces;
    if (!IsPatch(call.database) || call.database == "Damaged.mdb")
      RemoveOne(expected, "Error driver connect to database.");
    expected.push_back(ConnectionTrace(call));
    return Sorted(traces) == Sorted(expected)
               ? std::vector<std::string>()
               : std::vector<std::string>{"Not the traces of a connection that failed."};
  }
  if (kind.function != "SQLExecDirectW" || IsPatch(call.database) || IsOpening(call) ||
      call.statement.starts_with("SELECT ") || !Fails(kind))
    return {};
  // A step's INSERT or DELETE that touches no row has not failed.
  const bool mayTouchNothing = call.step >= 0 && (call.statement.starts_with("INSERT") ||
                                                  call.statement.starts_with("DELETE"));
  if (kind.code == SQL_NO_DATA && mayTouchNothing) {
    // A table whose key is not recorded is reported when it comes to it.
    const bool isKey = call.statement.starts_with("INSERT INTO [InfoTableRelations]");
    return isKey || traces == whole.outcome.traces
               ? std::vector<std::string>()
               : std::vector<std::string>{"There is a trace of a row that was not touched."};
  }
  const std::string due = StatementTrace(whole, call);
  const bool isTraced = std::any_of(traces.begin(), traces.end(),
                                    [&due](const auto& trace) { return trace.starts_with(due); });
  if (due.empty() || isTraced)
    return {};
  return {"There is no trace of it: " + due};
}
