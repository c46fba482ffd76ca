// A whole update over databases whose stored tables, catalogues and answers are arbitrary: it ends
// by itself, gives back what it took, and changes nothing but the targets.
#include "update/DatabaseUpdateManager.h"

#include "database/DatabaseNames.h"
#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/Diary.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/Recorder.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/Text.h"
#include "tests/fuzz/OneInput.h"
#include "tests/fuzz/Require.h"
#include "tests/unit/settings/SettingsMachine.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "update/DatabaseConfiguration.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <map>
#include <optional>

namespace {

const char* const Tables[] = {"Parts", "NewParts", "Colours", "InfoTableRelations"};
const char* const Columns[] = {"Id", "Name", "NameEN", "NameDE", "Since", "Weight", "Remark"};

// Where what is written into steering tables is found most of the time.
const char* const Words[] = {"",
                             "Parts",
                             "NewParts",
                             "Colours",
                             "InfoTableRelations",
                             "Par*",
                             "*",
                             "P*ts",
                             "New*New",
                             "**",
                             "QuillRules",
                             "quillbase",
                             "QuillProfiles",
                             "Id",
                             "NameEN",
                             "PrimaryKey",
                             "Unique",
                             "LanguageDependent",
                             "LanguageDependentTables",
                             "Name;-;-;-;-;-;-;-;-;NameDE;NameEN",
                             "Name/UNIQUE,Remark;;NameDE,-;,,",
                             "Parts;NewParts;Colours;a;b;c;d;e;f;NewParts;Colours",
                             ";;;",
                             ",",
                             "MajorNumber",
                             "BuildNumber",
                             "SteelGrades",
                             "O'Neil",
                             "x' OR '1'='1",
                             "2010-03-31",
                             "-1",
                             "2147483648",
                             " 7x"};

const int Codes[] = {SQL_SUCCESS,        SQL_SUCCESS_WITH_INFO, SQL_NO_DATA, SQL_ERROR,
                     SQL_INVALID_HANDLE, SQL_NEED_DATA,         -1234,       SQL_STILL_EXECUTING};

const char* const PatchConnection =
    "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=C:\\Data\\DatabaseUpdate\\";

// Builds the databases that an input describes. What the input leaves open is an ordinary update.
class World
{
public:
  World(FuzzedDataProvider& fuzzed, bool hugeTexts) : input(fuzzed), isHuge(hugeTexts) {}

  void Build()
  {
    for (const char* target : {"QuillRules", "QuillBase"}) {
      DataSourceTable.Append(
          {L"x64", WideText(target).c_str(), WideText(std::string("DSN=") + target).c_str()});
      Describe(Odbc().Database(std::string("DSN=") + target), 1);
    }
    for (const char* patch : {"a.mdb", "b.mdb", "Projects\\p.mdb"})
      Describe(Odbc().Database(std::string(PatchConnection) + patch), 2);
    const uint32_t languages[] = {1033, 9, 1031, 1036, 7, 3084, 1041, 1038};
    Registry().SetNumber(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentPath, "Language",
                         input.PickValueInArray(languages));
  }

private:
  std::string Word()
  {
    const uint8_t choice = input.ConsumeIntegral<uint8_t>();
    constexpr size_t wordCount = sizeof(Words) / sizeof(Words[0]);
    if (choice < wordCount)
      return Words[choice];
    if (choice >= 0xd0 && choice < 0xf8)
      return List();
    if (choice < 0xd0) {
      std::string text = input.ConsumeRandomLengthString(16);
      std::erase(text, '\0');
      return text;
    }
    const char* const pieces[] = {"x", "'", "ab;", "A,", "*", "\xC3\xA4", "\xED\xA0\xBD", "]"};
    const size_t lengths[] = {49, 50, 128, 129, 254, 255, 1023, 1024};
    return Repeat(input.PickValueInArray(pieces), input.PickValueInArray(lengths));
  }

  // Names as lists have them, of as many places as there are languages.
  std::string List()
  {
    const char* const names[] = {"NameEN",   "Name", "NameDE", "Parts",
                                 "NewParts", "-",    "",       "Id,Name"};
    std::string list = "Name";
    for (size_t i = Count(24); i > 0; --i)
      list += (input.ConsumeIntegral<uint8_t>() >= 0xe0 ? "," : ";") +
              std::string(input.PickValueInArray(names));
    return list;
  }

  std::string TableName() { return input.PickValueInArray(Tables); }

  static std::string Repeat(const std::string& piece, size_t count)
  {
    std::string text;
    for (size_t i = 0; i < count; ++i)
      text += piece;
    return text;
  }

  OdbcCell Value()
  {
    const int numbers[] = {0, 1, -1, 2, 9, 255, 2147483647, -2147483647 - 1};
    const uint8_t choice = input.ConsumeIntegral<uint8_t>();
    if (choice < 64)
      return input.PickValueInArray(numbers);
    if (choice < 128)
      return Word();
    if (choice < 160)
      return nullptr;
    if (choice < 192)
      return input.ConsumeFloatingPoint<double>();
    // Seven of these, with their quotes doubled, are more than a statement may have.
    if (choice < 200 && isHuge)
      return Repeat("'", 70000);
    return static_cast<int>(input.ConsumeIntegral<int32_t>());
  }

  OdbcRow Row(const std::vector<OdbcCell>& cells)
  {
    OdbcRow row({});
    row.cells = cells;
    // Now and then a fetch gives another code, a cell is another one or is missing.
    const uint8_t change = input.ConsumeIntegral<uint8_t>();
    if (change >= 0xf0)
      row.code = input.PickValueInArray(Codes);
    else if (change >= 0xe0 && !row.cells.empty())
      row.cells[change % row.cells.size()] = Value();
    else if (change >= 0xd8 && !row.cells.empty())
      row.cells.pop_back();
    return row;
  }

  size_t Count(size_t most) { return input.ConsumeIntegralInRange<size_t>(0, most); }

  // Of a few columns of the kinds that tables have.
  OdbcRows ValueRows(size_t columns)
  {
    OdbcRows rows;
    for (size_t i = 1 + Count(2); i > 0; --i) {
      std::vector<OdbcCell> cells;
      for (size_t column = 0; column < columns; ++column)
        cells.push_back(Value());
      rows.push_back(Row(cells));
    }
    return rows;
  }

  OdbcRows VersionRows(int version)
  {
    OdbcRows rows = {Row({"MajorNumber", version}), Row({"BuildNumber", version})};
    for (size_t i = Count(4); i > 0; --i)
      rows.push_back(Row({Word(), Value()}));
    return rows;
  }

  OdbcRows ProjectRows(int version)
  {
    OdbcRows rows = {Row({"SteelGrades", version})};
    for (size_t i = Count(3); i > 0; --i)
      rows.push_back(Row({Word(), Value()}));
    return rows;
  }

  OdbcRow LanguageRow()
  {
    const char* const kinds[] = {"LanguageDependent", "LanguageDependentTables"};
    const std::string kind = input.PickValueInArray(kinds);
    const std::string name = input.ConsumeIntegral<uint8_t>() < 0xf0 ? TableName() : "UpdateTable";
    return Row({name, List(), kind});
  }

  OdbcRows InfoRows()
  {
    OdbcRows rows;
    for (size_t i = Count(4); i > 0; --i)
      rows.push_back(input.ConsumeBool() ? Row({Word(), Word(), Word()}) : LanguageRow());
    return rows;
  }

  OdbcRows Steps()
  {
    OdbcRows rows;
    for (size_t i = 1 + Count(4); i > 0; --i) {
      const uint8_t flags = input.ConsumeIntegral<uint8_t>();
      const std::string database = (flags & 0xe0) == 0xe0 ? Word() : "QuillRules";
      const std::string source = (flags & 0x18) == 0x18 ? Word() : TableName();
      const std::string target = (flags & 0x18) == 0x10 ? Word() : TableName();
      rows.push_back(Row({static_cast<int>(i), database, source, target, flags & 1, (flags & 2) / 2,
                          (flags & 4) / 4}));
    }
    return rows;
  }

  OdbcColumn AnyColumn()
  {
    const int types[] = {SQL_WVARCHAR, SQL_INTEGER,  SQL_WLONGVARCHAR, SQL_DOUBLE,
                         SQL_BIT,      SQL_SMALLINT, SQL_TINYINT,      SQL_TYPE_TIMESTAMP,
                         SQL_NUMERIC,  SQL_CHAR,     SQL_VARBINARY,    SQL_BIGINT,
                         99,           SQL_WCHAR,    SQL_TIMESTAMP,    0};
    const OdbcCell sizes[] = {20, 0, nullptr, -1, 2147483647, 1, 255, 65535, 524287, 524288, 5, 19};
    const bool isWord = input.ConsumeIntegral<uint8_t>() >= 0xc0;
    const std::string name = isWord ? Word() : input.PickValueInArray(Columns);
    OdbcColumn column(name, input.PickValueInArray(types),
                      sizes[Count(sizeof(sizes) / sizeof(sizes[0]) - 1)], input.ConsumeBool());
    // Any other answer about it, such as a name that is longer than it is told to be.
    if (input.ConsumeIntegral<uint8_t>() >= 0xe0)
      (void)column.Set(static_cast<int>(1 + Count(17)), Value());
    return column;
  }

  void DescribeTable(OdbcDatabase& database, const char* table)
  {
    std::vector<OdbcColumn> columns;
    const uint8_t shape = input.ConsumeIntegral<uint8_t>();
    if (shape >= 0xfc) {
      for (int i = 0; i < 260; ++i)
        columns.emplace_back("C" + std::to_string(i), SQL_WVARCHAR, 5);
    } else {
      columns.emplace_back("Id", SQL_INTEGER, 10, 0);
      columns.emplace_back("Name", SQL_WVARCHAR, 20);
      for (size_t i = Count(isHuge ? 12 : 5); i > 0; --i)
        columns.push_back(AnyColumn());
    }
    database.Columns(table, columns);
    const size_t width = std::min<size_t>(columns.size(), 14);
    database.Table(table, ValueRows(width));
    database.Query(std::string("SELECT [Id] FROM ") + table, ValueRows(1));
    OdbcRows relations = {
        Row({input.ConsumeIntegral<uint8_t>() >= 0xc0 ? Word() : "Id", "PrimaryKey"})};
    for (size_t i = Count(2); i > 0; --i)
      relations.push_back(Row({Word(), Word()}));
    database.Query(std::string("SELECT [ColumnName],[TypeProperty] FROM [InfoTableRelations] "
                               "WHERE [TableName] = '") +
                       table + "'",
                   relations);
  }

  void Describe(OdbcDatabase& database, int version)
  {
    database.OtherStatements(input.PickValueInArray(Codes));
    database.Table("KFVersion", VersionRows(version));
    database.Table("KFProjectsVersion", ProjectRows(version));
    database.Table("Info", InfoRows());
    database.Query("SELECT * FROM UpdateTable ORDER BY [ID]", Steps());
    std::vector<std::string> names;
    for (const char* table : Tables) {
      if (input.ConsumeIntegral<uint8_t>() >= 0xd0)
        continue;
      names.emplace_back(table);
      DescribeTable(database, table);
    }
    for (size_t i = Count(3); i > 0; --i)
      names.push_back(Word());
    database.Tables(names, input.PickValueInArray(Codes));
    if (input.ConsumeIntegral<uint8_t>() >= 0xf8)
      database.ColumnsGive(input.PickValueInArray(Codes));
  }

  FuzzedDataProvider& input;
  bool isHuge;
};

// Failures of calls in the middle of the update. True if one may come before the patches are open,
// or may break off the update: what it leaves then is left to the end of the process.
bool OrderFailures(FuzzedDataProvider& input)
{
  const char* const calls[] = {"SQLFetch",   "SQLExecDirectW", "SQLBindCol",    "SQLColumnsW",
                               "SQLTablesW", "SQLCloseCursor", "SQLAllocHandle"};
  bool leaves = false;
  for (size_t i = input.ConsumeIntegralInRange<size_t>(0, 3); i > 0; --i) {
    std::string call = input.PickValueInArray(calls);
    if (call == "SQLAllocHandle")
      leaves = true;
    const uint8_t form = input.ConsumeIntegral<uint8_t>();
    if (form >= 0xc0) {
      call += " throwing";
      leaves = true;
    }
    FailOdbcCall(call, 1 + input.ConsumeIntegral<uint16_t>() % 400, input.PickValueInArray(Codes));
  }
  return leaves;
}

size_t CharactersOf(const std::string& utf8)
{
  return WideText(utf8).Length();
}

bool BeginsWithAny(const std::string& text, std::initializer_list<const char*> beginnings)
{
  for (const char* beginning : beginnings) {
    if (text.starts_with(beginning))
      return true;
  }
  return false;
}

// `dbc#1` and the like, out of a line, from there where it begins up to one of the ends.
std::string HandleAt(const std::string& line, size_t begin)
{
  return line.substr(begin, line.find_first_of(",) ", begin) - begin);
}

// The statement of a line of SQLExecDirectW.
std::string StatementOf(const std::string& line)
{
  const size_t begin = line.find('"') + 1;
  return line.substr(begin, line.rfind("\", -3) ") - begin);
}

void CheckStatements(bool brokeOff)
{
  std::map<std::string, bool> patches;            // by connection: whether it is a patch
  std::map<std::string, std::string> owners;      // of statements: their connections
  std::map<std::string, size_t> versionsWritten;  // by connection
  for (const std::string& line : Diary()) {
    if (line.starts_with("SQLDriverConnectW(")) {
      patches[HandleAt(line, line.find('(') + 1)] = line.find(PatchConnection) != std::string::npos;
    } else if (line.starts_with("SQLAllocHandle(STMT, dbc#")) {
      if (line.find(" stmt#") != std::string::npos)
        owners[line.substr(line.rfind("stmt#"))] = HandleAt(line, line.find("dbc#"));
    } else if (line.starts_with("SQLExecDirectW(stmt#")) {
      const std::string statement = StatementOf(line);
      const std::string& connection = owners[HandleAt(line, line.find('(') + 1)];
      Require(CharactersOf(statement) < static_cast<size_t>(QulStringLimit),
              "a statement is within the limit");
      if (patches[connection])
        Require(statement.starts_with("SELECT "), "patches are only read");
      Require(BeginsWithAny(statement,
                            {"SELECT ", "UPDATE KFVersion SET ", "UPDATE [", "UPDATE KF",
                             "INSERT INTO [", "DELETE FROM ", "DROP TABLE ", "CREATE TABLE "}),
              "a statement is one of the program's");
      versionsWritten[connection] += statement.starts_with("UPDATE KFVersion SET ") ? 1 : 0;
    }
  }
  for (const auto& [connection, count] : versionsWritten)
    Require(brokeOff || count % 6 == 0, "a version is written whole");
}

bool ReportedACriticalError()
{
  for (const std::string& text : DebugTexts()) {
    if (text.find("Critical Error!!") != std::string::npos)
      return true;
  }
  return false;
}

void CheckMisuses()
{
  for (const std::string& misuse : TakeMisuses())
    Require(misuse.starts_with("A failure of "), "no handle is misused");
}

// A machine with the patches' files for the time of an input. They stay the same, all else goes.
class Machine
{
public:
  Machine()
  {
    static const bool filesArePut = PutFiles();
    Require(filesArePut, "the files are there");
    SetMachine("DataPath", "C:\\Data");
    updatePromptPending = true;
  }
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;
  ~Machine()
  {
    DataSourceTable.Free();
    ResetOdbc();
    ResetRegistry();
    ResetDebugOutput();
    ClearDiary();
    (void)TakeMisuses();
  }

private:
  static bool PutFiles()
  {
    ResetPlatform();
    for (const char* file : {"a.mdb", "b.mdb", "Projects\\p.mdb"})
      Files().Put(std::string("C:\\Data\\DatabaseUpdate\\") + file, "");
    return Files().Exists("C:\\Data\\DatabaseUpdate\\a.mdb");
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  FuzzedDataProvider input(data, size);
  const bool isHuge = input.ConsumeIntegral<uint8_t>() >= 0xf0;
  const Machine machine;
  const bool leaves = OrderFailures(input) || isHuge;
  World(input, isHuge).Build();

  {
    OneInput run;
    std::optional<LeftToTheEnd> leftovers;
    if (leaves)
      leftovers.emplace();
    const Ending ending = run.Run([] { RunDatabaseUpdate(0, 0); });
    Require(ending != Ending::OutOfMemory, "the update lets nothing through");
    Require(ending == Ending::Returned || isHuge, "ordinary values do not end the process");
    if (!leaves) {
      Require(!ReportedACriticalError(), "no content breaks the update off");
      Require(run.ArraysLeft() == 0, "all buffers are given back");
      Require(Odbc().OpenStatements() == 0 && Odbc().OpenConnections() == 0 &&
                  Odbc().OpenEnvironments() == 0,
              "all handles are given back");
    }
  }
  CheckStatements(leaves);
  CheckMisuses();
  return 0;
}
