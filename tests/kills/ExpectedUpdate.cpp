#include "tests/kills/ExpectedUpdate.h"

#include "tests/doubles/Text.h"
#include "tests/scenario/Outcome.h"
#include "tests/scenario/OwnConnection.h"

namespace {

// No value of this machine is longer.
constexpr size_t LongestText = 1000;

std::string Bracketed(const std::string& name)
{
  return "[" + name + "]";
}

std::string Joined(const PatchRow& row, size_t first, const std::string& between)
{
  std::string text;
  for (size_t i = first; i < row.size(); ++i)
    text += (i == first ? "" : between) + Bracketed(row[i].first) + "=" + row[i].second;
  return text;
}

std::string UpdateText(const std::string& table, const PatchRow& row)
{
  return "UPDATE [" + table + "]  SET " + Joined(row, 1, ",") + " WHERE " +
         Joined({row.front()}, 0, "");
}

std::string InsertText(const std::string& table, const PatchRow& row)
{
  std::string columns;
  std::string values;
  for (const auto& [column, value] : row) {
    columns += (columns.empty() ? "" : ",") + Bracketed(column);
    values += (values.empty() ? "" : ",") + value;
  }
  return "INSERT INTO [" + table + "] (" + columns + ") VALUES (" + values + ");";
}

std::string DeleteText(const std::string& table, const PatchRow& row)
{
  return "DELETE FROM " + table + " WHERE " + Joined(row, 0, " AND ") + ";";
}

// All tables that are created on this machine look so.
std::string CreateText(const std::string& table)
{
  return "CREATE TABLE " + table +
         " ([Id] LONG NOT NULL ,[Name] TEXT(20) NOT NULL,PRIMARY KEY ([Id]));";
}

}  // namespace

// A database with what it said of itself at the start.
class ExpectedUpdate::Target
{
public:
  Target(const std::string& databaseName, const std::string& path)
      : name(databaseName), connection(path)
  {
    version = {Number("KFVersion", "MajorNumber").value_or(0),
               Number("KFVersion", "MinorNumber").value_or(0),
               Number("KFVersion", "CommSPNumber").value_or(0),
               Number("KFVersion", "BuildNumber").value_or(0)};
    for (const char* const attribute : {"BoltSets", "SteelGrades"})
      projects[attribute] =
          HasTable("KFProjectsVersion") ? Number("KFProjectsVersion", attribute) : std::nullopt;
  }

  SQLRETURN Execute(const std::string& sql) { return connection.Execute(sql); }

  std::string Content()
  {
    return DescribeContent([this](const std::string& sql) { return Texts(sql); });
  }

  bool HasTable(const std::string& table)
  {
    return !Texts("SELECT 1 FROM sqlite_schema WHERE name='" + table + "'").empty();
  }

  // True if the database says which column is the key of the table.
  bool TellsKeyOf(const std::string& table)
  {
    return table == "InfoTableRelations" ||
           !Texts("SELECT 1 FROM InfoTableRelations WHERE TableName='" + table + "'").empty();
  }

  bool LacksProjects(const std::map<std::string, int>& numbers) const
  {
    for (const auto& [attribute, number] : numbers) {
      if (projects.at(attribute).value_or(number - 1) < number)
        return true;
    }
    return false;
  }

  std::string name;
  Version version;

private:
  // The first column of a query.
  std::vector<std::string> Texts(const std::string& sql)
  {
    std::vector<std::string> texts;
    std::vector<SQLWCHAR> value(LongestText + 1);
    SQLHSTMT statement = SQL_NULL_HSTMT;
    SQLLEN length = 0;
    WideText text(sql);
    (void)SQLAllocHandle(SQL_HANDLE_STMT, connection.Handle(), &statement);
    EXPECT_EQ(SQLExecDirectW(statement, text.data(), SQL_NTS), SQL_SUCCESS) << sql;
    (void)SQLBindCol(statement, 1, SQL_C_WCHAR, value.data(),
                     static_cast<SQLLEN>(value.size() * sizeof(SQLWCHAR)), &length);
    while (SQLFetch(statement) == SQL_SUCCESS)
      texts.push_back(length == SQL_NULL_DATA ? "" : Utf8(value.data()));
    (void)SQLFreeHandle(SQL_HANDLE_STMT, statement);
    return texts;
  }

  std::optional<int> Number(const std::string& table, const std::string& attribute)
  {
    const std::vector<std::string> values =
        Texts("SELECT [Value] FROM " + table + " WHERE [Attribute]='" + attribute + "'");
    return values.empty() ? std::nullopt : std::optional(std::stoi(values.front()));
  }

  OwnConnection connection;
  std::map<std::string, std::optional<int>> projects;
};

ExpectedUpdate::ExpectedUpdate(const std::function<std::string(const std::string& name)>& file,
                               bool keepsStates)
    : keepsAllStates(keepsStates)
{
  states.emplace_back();
  for (const std::string& name : Targets()) {
    targets.push_back(std::make_unique<Target>(name, file(name)));
    states.front()[name] = targets.back()->Content();
  }
  for (const Patch& patch : Patches()) {
    for (const auto& target : targets) {
      if (target->version < patch.version) {
        WriteVersion(patch.version, *target);
        Apply(patch, *target);
      }
    }
  }
  for (const Patch& patch : ProjectPatches()) {
    for (const auto& target : targets) {
      if (target->LacksProjects(patch.projectsVersion)) {
        WriteProjectsVersion(patch.projectsVersion, *target);
        Apply(patch, *target);
      }
    }
  }
  for (const auto& target : targets)
    states.back()[target->name] = target->Content();
}

ExpectedUpdate::~ExpectedUpdate() = default;

void ExpectedUpdate::WriteVersion(const Version& version, Target& target)
{
  const std::pair<const char*, int> numbers[] = {{"CommMajorVersion", 2010},
                                                 {"CommMinorVersion", 0},
                                                 {"CommSPNumber", version.servicePack},
                                                 {"BuildNumber", version.build},
                                                 {"MajorNumber", version.major},
                                                 {"MinorNumber", version.minor}};
  for (const auto& [attribute, number] : numbers)
    (void)SendReporting(target, "UPDATE KFVersion SET [Value]='" + std::to_string(number) +
                                    "' WHERE [Attribute]='" + attribute + "'");
}

void ExpectedUpdate::WriteProjectsVersion(const std::map<std::string, int>& numbers, Target& target)
{
  const bool mayExist = target.HasTable("KFProjectsVersion");
  if (!mayExist)
    (void)SendReporting(target,
                        "CREATE TABLE KFProjectsVersion ([Attribute] varchar(255) PRIMARY KEY NOT "
                        "NULL,[Value] varchar(255) NOT NULL)");
  for (const auto& [attribute, number] : numbers) {
    const std::string value = "'" + std::to_string(number) + "'";
    const std::string name = "'" + attribute + "'";
    if (mayExist && SendReporting(target, "UPDATE KFProjectsVersion SET [Value]=" + value +
                                              " WHERE [Attribute]=" + name))
      continue;
    (void)SendReporting(target, "INSERT INTO [KFProjectsVersion] ([Attribute],[Value]) VALUES(" +
                                    name + "," + value + ")");
  }
}

void ExpectedUpdate::Apply(const Patch& patch, Target& target)
{
  for (const PatchStep& step : patch.steps) {
    if (step.database == target.name)
      Apply(step, target);
  }
}

void ExpectedUpdate::Apply(const PatchStep& step, Target& target)
{
  const bool isPresent = target.HasTable(step.target);
  const bool creates = step.recreate || (step.createIfMissing && !isPresent);
  if (!isPresent && (step.deleteRows || !creates)) {
    Trace("Target table " + step.target + " not found in database " + target.name);
    return;
  }
  // The key is asked for once for the source, and once more for a target that is read.
  const bool tellsKey = target.TellsKeyOf(step.target);
  for (int times = creates ? 1 : 2; !tellsKey && times > 0; --times)
    Trace("Unable to read PrimaryKey or Unique info for table " + step.target +
          "!\n.First column will be marked as PK!");
  if (step.recreate && isPresent)
    (void)Send(target, "DROP TABLE " + step.target);
  if (creates)
    (void)SendReporting(target, CreateText(step.target));
  if (!step.createIfMissing || !isPresent)
    CopyRows(step, target);
}

void ExpectedUpdate::CopyRows(const PatchStep& step, Target& target)
{
  const bool insertsOnly = step.recreate || step.createIfMissing;
  for (const PatchRow& row : step.rows) {
    if (step.deleteRows) {
      (void)Send(target, DeleteText(step.target, row));
      continue;
    }
    if (!insertsOnly && Send(target, UpdateText(step.target, row)))
      continue;
    const std::string insert = InsertText(step.target, row);
    if (!Send(target, insert))
      Trace(insert);
  }
}

bool ExpectedUpdate::Send(Target& target, const std::string& statement)
{
  const SQLRETURN code = target.Execute(statement);
  lines.push_back(target.name + ".mdb: " + statement +
                  (code == SQL_SUCCESS ? "" : " -> " + std::to_string(code)));
  if (keepsAllStates) {
    states.push_back(states.back());
    states.back()[target.name] = target.Content();
  }
  return code == SQL_SUCCESS;
}

bool ExpectedUpdate::SendReporting(Target& target, const std::string& statement)
{
  if (Send(target, statement))
    return true;
  Trace("Error executeSQL in " + target.name + " database.");
  Trace(statement);
  return false;
}

void ExpectedUpdate::Trace(const std::string& text)
{
  lines.push_back("trace: " + text);
}
