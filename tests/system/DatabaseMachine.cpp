#include "tests/system/DatabaseMachine.h"

#include "sandbox/common/SandboxFiles.h"

#include <windows.h>

#include <sql.h>
#include <sqlext.h>

#include <filesystem>
#include <system_error>

namespace {

constexpr const wchar_t* ConnectionsKey = L"Software\\Norvane\\DatabaseConnections";
const std::string ConfigurationFile = "Configuration\\DatabaseConfiguration.xml";

std::wstring OdbcTraceFile()
{
  return FolderOf(FolderOf(OwnProgramPath())) + L"\\odbc\\trace.log";
}

std::string BelowDataFolder(const std::string& file, const std::string& dataFolder)
{
  return file.starts_with(dataFolder + "\\") ? file.substr(dataFolder.size() + 1) : file;
}

bool IsRegistered(const std::string& name)
{
  return name == "QuillProfiles2010" || name == "NVCMapping2010";
}

void RemoveFolder(const std::wstring& folder)
{
  std::error_code ignored;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, ignored)) {
    SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL);
  }
  std::filesystem::remove_all(folder, ignored);
  ASSERT_FALSE(std::filesystem::exists(folder));
}

// A connection of the test's own, gone at the end of the scope.
class OdbcConnectionOfTest
{
public:
  explicit OdbcConnectionOfTest(const std::string& connectionString)
  {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3),
                  0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    std::wstring text = FromUtf8(connectionString);
    EXPECT_TRUE(SQL_SUCCEEDED(SQLDriverConnectW(connection, nullptr, text.data(), SQL_NTS, nullptr,
                                                0, nullptr, SQL_DRIVER_NOPROMPT)))
        << connectionString;
  }

  ~OdbcConnectionOfTest()
  {
    SQLDisconnect(connection);
    SQLFreeHandle(SQL_HANDLE_DBC, connection);
    SQLFreeHandle(SQL_HANDLE_ENV, environment);
  }

  OdbcConnectionOfTest(const OdbcConnectionOfTest&) = delete;
  OdbcConnectionOfTest& operator=(const OdbcConnectionOfTest&) = delete;

  // Runs the statement and gives its rows.
  std::vector<std::string> Execute(const std::string& statementText)
  {
    SQLHSTMT statement = SQL_NULL_HSTMT;
    SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement);
    std::wstring text = FromUtf8(statementText);
    EXPECT_TRUE(SQL_SUCCEEDED(SQLExecDirectW(statement, text.data(), SQL_NTS))) << statementText;
    SQLSMALLINT columns = 0;
    SQLNumResultCols(statement, &columns);
    std::vector<std::string> rows;
    while (columns > 0 && SQL_SUCCEEDED(SQLFetch(statement))) {
      rows.push_back(Row(statement, columns));
    }
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    return rows;
  }

private:
  static std::string Row(SQLHSTMT statement, SQLSMALLINT columns)
  {
    std::string row;
    for (SQLUSMALLINT column = 1; column <= columns; ++column) {
      wchar_t value[500] = {};
      SQLLEN length = SQL_NULL_DATA;
      SQLGetData(statement, column, SQL_C_WCHAR, value, sizeof value, &length);
      row += (column > 1 ? "|" : "") + (length < 0 ? "<null>" : ToUtf8(value));
    }
    return row;
  }

  SQLHENV environment = SQL_NULL_HENV;
  SQLHDBC connection = SQL_NULL_HDBC;
};

}  // namespace

const std::vector<std::string> ProductDatabases = {"QuillRules",
                                                   "QuillAddition",
                                                   "QuillDetails",
                                                   "QuillBase",
                                                   "QuillProfiles2010",
                                                   "QuillSettings",
                                                   "QuillControlStructure",
                                                   "QuillBitmaps",
                                                   "QuillProject",
                                                   "QuillCurrentProject",
                                                   "QuillCurrentAddIn",
                                                   "QuillProjectStandards",
                                                   "QuillDetailsBase",
                                                   "QuillKernelEnvironment",
                                                   "QuillJointsCalculation",
                                                   "NVCMapping2010",
                                                   "QuillGratings"};

std::string ProductFile(const std::string& name)
{
  return name == "QuillCurrentProject" ? "Kernel\\Data\\model.mdb" : "Databases\\" + name + ".mdb";
}

std::vector<std::string> ProductFiles()
{
  std::vector<std::string> files;
  for (const std::string& name : ProductDatabases) {
    files.push_back(ProductFile(name));
  }
  return files;
}

std::vector<std::string> ConnectFailures(size_t count)
{
  return std::vector<std::string>(count, "Error driver connect to database.");
}

std::vector<std::string> DatabaseRun::Opened() const
{
  std::vector<std::string> files;
  for (const OdbcConnection& connection : traffic.connections) {
    if (connection.connected) {
      files.push_back(connection.file);
    }
  }
  return files;
}

std::vector<std::string> DatabaseRun::Refused() const
{
  std::vector<std::string> files;
  for (const OdbcConnection& connection : traffic.connections) {
    if (!connection.connected) {
      files.push_back(connection.file);
    }
  }
  return files;
}

std::vector<std::string> DatabaseRun::StatementsOn(const std::string& file) const
{
  for (const OdbcConnection& connection : traffic.connections) {
    if (connection.file == file) {
      return connection.statements;
    }
  }
  return {"not opened"};
}

std::vector<std::string> DatabaseRun::Traces() const
{
  std::vector<std::string> texts;
  for (size_t i = 0; i + 1 < debugOutput.size(); i += 2) {
    EXPECT_EQ(debugOutput[i], "\n");
    texts.push_back(debugOutput[i + 1]);
  }
  EXPECT_EQ(debugOutput.size() % 2, 0u);
  return texts;
}

void DatabaseTest::SetUp()
{
  LauncherTest::SetUp();
  InstallHost(L"R18.0", L"ABCD-0001");
  hasDatabases = true;
  RemoveFolder(DataFolder());
  ASSERT_TRUE(MakeFolders(DataFolder()));
  Machine64.WriteText(EnvironmentKey, L"DataPath", DataFolder());
}

void DatabaseTest::TearDown()
{
  RemoveFolder(DataFolder());
}

// Short, because the driver manager cuts long texts in its trace.
std::wstring DatabaseTest::DataFolder()
{
  return L"C:\\KestrelforgeTestData";
}

std::wstring DatabaseTest::DataPath(const std::string& file)
{
  return DataFolder() + L"\\" + FromUtf8(file);
}

std::string DatabaseTest::ConnectionString(const std::string& file)
{
  return "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=" + ToUtf8(DataPath(file));
}

void DatabaseTest::LayCopy(const std::string& sandboxDatabase, const std::string& file)
{
  const std::wstring from = SandboxFile(L"databases\\" + FromUtf8(sandboxDatabase));
  ASSERT_TRUE(MakeFolders(FolderOf(DataPath(file))));
  ASSERT_TRUE(CopyFileW(from.c_str(), DataPath(file).c_str(), FALSE)) << from;
}

void DatabaseTest::LayBytes(const std::string& file, const std::string& bytes)
{
  ASSERT_TRUE(MakeFolders(FolderOf(DataPath(file))));
  ASSERT_TRUE(WriteWholeFile(DataPath(file), bytes)) << file;
}

void DatabaseTest::LayProduct()
{
  std::string elements;
  for (const std::string& name : ProductDatabases) {
    LayCopy(name + ".mdb", ProductFile(name));
    if (IsRegistered(name)) {
      Machine64.WriteText(ConnectionsKey, FromUtf8(name),
                          FromUtf8(ConnectionString(ProductFile(name))));
    } else if (name != "QuillCurrentProject") {
      elements += Element(name);
    }
  }
  WriteConfiguration(Configuration(elements));
}

void DatabaseTest::LayPatch(const std::string& name, const PatchVersion& version)
{
  const std::string file = "DatabaseUpdate\\" + name;
  LayCopy("updates\\Spring2010.mdb", file);
  std::vector<std::string> statements;
  const std::pair<const char*, int> numbers[] = {{"MajorNumber", version.majorNumber},
                                                 {"MinorNumber", version.minorNumber},
                                                 {"CommSPNumber", version.servicePack},
                                                 {"BuildNumber", version.build}};
  for (const auto& [attribute, number] : numbers) {
    statements.push_back("UPDATE KFVersion SET [Value]='" + std::to_string(number) +
                         "' WHERE [Attribute]='" + attribute + "'");
  }
  Execute(file, statements);
}

void DatabaseTest::WriteConfiguration(const std::string& bytes)
{
  LayBytes(ConfigurationFile, bytes);
}

std::string DatabaseTest::Element(const std::string& name, const std::string& platform)
{
  return "<DataSource Platform=\"" + platform + "\" Name=\"" + name + "\" Value=\"" +
         ConnectionString(ProductFile(name)) + "\" />\r\n";
}

std::string DatabaseTest::Configuration(const std::string& elements)
{
  return "<?xml version=\"1.0\"?>\r\n<Kestrelforge>\r\n" + elements + "</Kestrelforge>\r\n";
}

void DatabaseTest::Execute(const std::string& file, const std::vector<std::string>& statements)
{
  OdbcConnectionOfTest connection(ConnectionString(file));
  for (const std::string& statement : statements) {
    (void)connection.Execute(statement);
  }
}

std::vector<std::string> DatabaseTest::Select(const std::string& file, const std::string& query)
{
  return OdbcConnectionOfTest(ConnectionString(file)).Execute(query);
}

void DatabaseTest::MakeDatabase(const std::string& file, const PatchVersion& version,
                                const std::vector<std::string>& statements)
{
  LayBytes(file, "");
  std::vector<std::string> all = {
      "CREATE TABLE KFVersion ([Attribute] TEXT(50), [Value] TEXT(50))"};
  const std::pair<const char*, int> numbers[] = {{"MajorNumber", version.majorNumber},
                                                 {"MinorNumber", version.minorNumber},
                                                 {"CommSPNumber", version.servicePack},
                                                 {"BuildNumber", version.build},
                                                 {"CommMajorVersion", 2010},
                                                 {"CommMinorVersion", 0}};
  for (const auto& [attribute, number] : numbers) {
    all.push_back("INSERT INTO KFVersion VALUES ('" + std::string(attribute) + "', '" +
                  std::to_string(number) + "')");
  }
  all.insert(all.end(), statements.begin(), statements.end());
  Execute(file, all);
}

std::string DatabaseTest::StoredVersion(const std::string& file)
{
  std::string version;
  for (const char* attribute : {"MajorNumber", "MinorNumber", "CommSPNumber", "BuildNumber"}) {
    for (const std::string& number :
         Select(file, "SELECT [Value] FROM KFVersion WHERE [Attribute]='" + std::string(attribute) +
                          "'")) {
      version += (version.empty() ? "" : ".") + number;
    }
  }
  return version;
}

std::map<std::string, std::string> DatabaseTest::DataFiles()
{
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(DataFolder())) {
    if (entry.is_regular_file()) {
      EXPECT_TRUE(ReadWholeFile(entry.path().wstring(), files[ToUtf8(entry.path().wstring())]));
    }
  }
  return files;
}

DatabaseRun DatabaseTest::Launch()
{
  DeleteFileW(OdbcTraceFile().c_str());
  DatabaseRun run;
  static_cast<LauncherRun&>(run) = Run(L"a.dwg");
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.Host().commandLine, L"/nologo a.dwg");
  std::string trace;
  EXPECT_TRUE(ReadWholeFile(OdbcTraceFile(), trace)) << "ODBCSYSINI has to name a traced driver";
  run.traffic = ParseOdbcTrace(trace);
  const std::string folder = ToUtf8(DataFolder());
  for (OdbcConnection& connection : run.traffic.connections) {
    connection.file = BelowDataFolder(connection.file, folder);
  }
  for (std::string& file : run.traffic.closed) {
    file = BelowDataFolder(file, folder);
  }
  return run;
}
