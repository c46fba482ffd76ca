#include "tests/unit/update/UpdateMachine.h"

#include "database/DatabaseNames.h"
#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/settings/SettingsMachine.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "update/DatabaseConfiguration.h"
#include "update/DatabaseUpdateManager.h"

#include <map>

const char* const UpdateMachine::ConfigurationFile =
    "C:\\Data\\Configuration\\DatabaseConfiguration.xml";
const char* const UpdateMachine::PatchFolder = "C:\\Data\\DatabaseUpdate";
const char* const UpdateMachine::ProjectFolder = "C:\\Data\\DatabaseUpdate\\Projects";
const char* const UpdateMachine::ConnectTrace = "\nError driver connect to database.";

namespace {

OdbcRows VersionRows(const Version& version)
{
  return {{"MajorNumber", version.major},
          {"MinorNumber", version.minor},
          {"CommSPNumber", version.servicePack},
          {"BuildNumber", version.build}};
}

// The text between the quotes of a diary's line, and what stands behind them.
std::string QuotedPart(const std::string& line)
{
  const size_t begin = line.find('"') + 1;
  return line.substr(begin, line.rfind('"') - begin);
}

std::string ResultOf(const std::string& line)
{
  const std::string result = line.substr(line.rfind(" = ") + 3);
  return result.substr(0, result.find(' '));
}

// `dbc#1` out of "SQLDriverConnectW(dbc#1, ..." and the like.
std::string FirstArgument(const std::string& line)
{
  const size_t begin = line.find('(') + 1;
  return line.substr(begin, line.find_first_of(",)", begin) - begin);
}

std::string LastPart(const std::string& connectionString)
{
  return connectionString.substr(connectionString.find_last_of("=\\") + 1);
}

}  // namespace

UpdateMachine::UpdateMachine()
{
  DataSourceTable.Free();
  updatePromptPending = true;
  SetDataPath("C:\\Data");
}

void UpdateMachine::TearDown()
{
  EXPECT_EQ(Files().OpenStreams(), 0);
  DataSourceTable.Free();
  PlatformTest::TearDown();
}

void UpdateMachine::SetDataPath(const std::string& path)
{
  SetMachine("DataPath", path);
}

std::string UpdateMachine::Entry(const std::string& name, const std::string& value,
                                 const std::string& platform)
{
  return "<DataSource Platform=\"" + platform + "\" Name=\"" + name + "\" Value=\"" + value +
         "\" />\n";
}

void UpdateMachine::PutFile(const std::string& bytes)
{
  Files().Put(ConfigurationFile, bytes);
}

void UpdateMachine::PutConfiguration(const std::string& elements)
{
  PutFile("<?xml version=\"1.0\"?>\n<Kestrelforge>\n" + elements + "</Kestrelforge>\n");
}

int UpdateMachine::Load()
{
  const LeftToTheEnd buffersOfTheFile;
  return LoadDatabaseConfiguration();
}

UpdateMachine::Lines UpdateMachine::Entries()
{
  Lines entries;
  for (int i = 0; i < DataSourceTable.count; ++i) {
    const DataSource& source = DataSourceTable.data[i];
    entries.push_back(Utf8(source.platform.Text()) + "|" + Utf8(source.name.Text()) + "|" +
                      Utf8(source.value.Text()));
  }
  return entries;
}

std::string UpdateMachine::ConnectionOf(const std::string& name)
{
  const LeftToTheEnd buffersOfTheFile;
  return Utf8(GetConnectionString(Handle(name)).Text());
}

OdbcDatabase& UpdateMachine::AddProductDatabase(const std::string& name, const Version& version,
                                                const OdbcRows& projectsVersion)
{
  DataSourceTable.Append({L"x64", Handle(name), Handle(ProductConnection(name))});
  return Odbc()
      .Database(ProductConnection(name))
      .Table("KFVersion", VersionRows(version))
      .Table("KFProjectsVersion", projectsVersion)
      .Table("Info", {});
}

std::string UpdateMachine::ProductConnection(const std::string& name)
{
  return "DSN=" + name;
}

OdbcDatabase& UpdateMachine::AddPatch(const std::string& fileName, const Version& version,
                                      const std::string& folder)
{
  Files().Put(folder + "\\" + fileName, "");
  return Odbc()
      .Database(PatchConnection(fileName, folder))
      .Table("KFVersion", VersionRows(version));
}

OdbcDatabase& UpdateMachine::AddProjectPatch(const std::string& fileName,
                                             const OdbcRows& projectsVersion)
{
  return AddPatch(fileName, {}, ProjectFolder).Table("KFProjectsVersion", projectsVersion);
}

void UpdateMachine::AddDamagedPatch(const std::string& fileName, const std::string& folder)
{
  Files().Put(folder + "\\" + fileName, "");
}

void UpdateMachine::AddWholeUpdate()
{
  const std::vector<OdbcColumn> parts = {{"Id", SQL_INTEGER, 10, 0}, {"Name", SQL_WVARCHAR, 20}};
  const std::vector<OdbcColumn> marks = {{"Code", SQL_WVARCHAR, 10}, {"Weight", SQL_DOUBLE, 53}};
  const std::vector<OdbcColumn> versions = {{"Attribute", SQL_WVARCHAR, 255, 0}};
  const std::string keyOfParts =
      "SELECT [ColumnName],[TypeProperty] FROM [InfoTableRelations] "
      "WHERE [TableName] = 'Parts'";
  AddProductDatabase("QuillRules", {1, 0, 0, 0}, {{"SteelGrades", 1}})
      .OtherStatements(SQL_SUCCESS)
      .Statement("UPDATE [Parts]  SET [Name]='Plate' WHERE [Id]=2", SQL_NO_DATA)
      .Query(keyOfParts, {{"Id", "PrimaryKey"}})
      .Columns("Parts", parts)
      .Columns("Marks", marks)
      .Columns("KFProjectsVersion", versions)
      .Tables({"Parts", "Marks"});
  AddProductDatabase("QuillBase", {1, 0, 0, 0}, {{"SteelGrades", 9}}).Columns("Parts", parts);
  AddPatch("a.mdb", {1, 1, 0, 0})
      .Query("SELECT * FROM UpdateTable ORDER BY [ID]",
             {{1, "QuillRules", "NewPar*", "Parts", 0, 0, 0},
              {2, "QuillRules", "Colours", "Colours", 0, 0, 1},
              {3, "QuillRules", "OldParts", "Parts", 1, 0, 0},
              {4, "QuillRules", "OldMarks", "Marks", 1, 0, 0},
              {5, "QuillBase", "NewParts", "Parts", 0, 0, 0}})
      .Table("Info", {{"Colours", "Name;-;-;-;-;-;-;-;-;-;NameEN", "LanguageDependent"}})
      .Tables({"NewParts", "Colours", "OldParts", "OldMarks"})
      .Columns("NewParts", parts)
      .Table("NewParts", {{1, "Bolt"}, {2, "Plate"}})
      .Columns("Colours", {{"Id", SQL_SMALLINT, 5, 0},
                           {"Name", SQL_WVARCHAR, 20},
                           {"NameEN", SQL_WVARCHAR, 20},
                           {"Since", SQL_TYPE_TIMESTAMP, 19},
                           {"Remark", SQL_WLONGVARCHAR, 1073741823}})
      .Table("Colours",
             {{1, "rouge", "red", "2010-03-31", "O'Neil's"}, {2, "bleu", "", nullptr, ""}})
      .Columns("OldParts", {{"Id", SQL_INTEGER, 10, 0}})
      .Query("SELECT [Id] FROM OldParts", {{7}, {8}})
      .Columns("OldMarks", marks)
      .Table("OldMarks", {{"W", 2.5}});
  AddProjectPatch("p.mdb", {{"SteelGrades", 2}, {"BoltSets", 1}})
      .Query("SELECT * FROM UpdateTable ORDER BY [ID]",
             {{1, "QuillRules", "Defaults", "Parts", 0, 0, 0}})
      .Columns("Defaults", parts)
      .Table("Defaults", {{3, "Angle"}});
}

std::string UpdateMachine::PatchConnection(const std::string& fileName, const std::string& folder)
{
  return "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=" + folder + "\\" + fileName;
}

UpdateMachine::Lines UpdateMachine::TriedConnections()
{
  Lines connections;
  for (const std::string& line : DiaryOf({"SQLDriverConnectW"}))
    connections.push_back(QuotedPart(line));
  return connections;
}

UpdateMachine::Lines UpdateMachine::Traces()
{
  Lines traces;
  const std::vector<std::string>& texts = DebugTexts();
  for (size_t i = 0; i + 1 < texts.size(); i += 2)
    traces.push_back(texts[i] + texts[i + 1]);
  return traces;
}

UpdateMachine::Lines UpdateMachine::Sent(size_t begin)
{
  std::map<std::string, std::string> owners;  // of connections and statements, by their handles
  Lines sent;
  for (size_t i = 0; i < Diary().size(); ++i) {
    const std::string& line = Diary()[i];
    if (line.starts_with("SQLDriverConnectW("))
      owners[FirstArgument(line)] = LastPart(QuotedPart(line));
    if (line.starts_with("SQLAllocHandle(STMT, dbc#") && line.find(" stmt#") != std::string::npos) {
      const size_t connection = line.find("dbc#");
      owners[line.substr(line.rfind("stmt#"))] =
          owners[line.substr(connection, line.find(')') - connection)];
    }
    if (i < begin)
      continue;
    if (line.starts_with("OutputDebugStringW(") && QuotedPart(line) != "\n")
      sent.push_back("trace: " + QuotedPart(line));
    if (line.starts_with("SQLExecDirectW(")) {
      const std::string result = line.ends_with(" throws") ? " throws" : " -> " + ResultOf(line);
      sent.push_back(owners[FirstArgument(line)] + ": " + QuotedPart(line) +
                     (result == " -> 0" ? "" : result));
    }
  }
  return sent;
}

std::string UpdateMachine::NameOf(const QulDatabase& database)
{
  return Utf8(database.GetName().Text());
}

std::vector<std::string> ProductNames()
{
  std::vector<std::string> names;
  for (const QulString& name : DatabaseNames)
    names.push_back(Utf8(name.Text()));
  return names;
}
