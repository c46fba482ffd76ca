#include "tests/unit/update/UpdateMachine.h"

#include "database/DatabaseNames.h"
#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/settings/SettingsMachine.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "update/DatabaseConfiguration.h"

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

}  // namespace

UpdateMachine::UpdateMachine()
{
  DataSourceTable.Free();
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

void UpdateMachine::AddProductDatabase(const std::string& name)
{
  DataSourceTable.Append({L"x64", Handle(name), Handle(ProductConnection(name))});
  Odbc()
      .Database(ProductConnection(name))
      .Table("KFVersion", VersionRows({}))
      .Table("KFProjectsVersion", {})
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

void UpdateMachine::AddDamagedPatch(const std::string& fileName, const std::string& folder)
{
  Files().Put(folder + "\\" + fileName, "");
}

std::string UpdateMachine::PatchConnection(const std::string& fileName, const std::string& folder)
{
  return "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=" + folder + "\\" + fileName;
}

UpdateMachine::Lines UpdateMachine::TriedConnections()
{
  Lines connections;
  for (const std::string& line : DiaryOf({"SQLDriverConnectW"})) {
    const size_t begin = line.find('"') + 1;
    connections.push_back(line.substr(begin, line.rfind('"') - begin));
  }
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
