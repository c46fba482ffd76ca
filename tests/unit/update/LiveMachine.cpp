#include "tests/unit/update/LiveMachine.h"

#include "tests/doubles/FilesDouble.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/settings/SettingsMachine.h"
#include "update/DatabaseConfiguration.h"
#include "update/DatabaseUpdateManager.h"

#include <algorithm>
#include <filesystem>

void LiveMachine::SetUp()
{
  ASSERT_TRUE(UseLiveOdbc());
}

std::string LiveMachine::ProductFile(const std::string& name)
{
  return name == "QuillCurrentProject" ? "C:\\Data\\Kernel\\Data\\model.mdb"
                                       : "C:\\Data\\Bases\\" + name + ".mdb";
}

std::string LiveMachine::PatchFile(const std::string& name)
{
  return std::string(PatchFolder) + "\\" + name;
}

std::string LiveMachine::ProjectFile(const std::string& name)
{
  return std::string(ProjectFolder) + "\\" + name;
}

void LiveMachine::Sql(const std::string& path, std::initializer_list<std::string> statements)
{
  ASSERT_EQ(RunSql(path, statements), "");
}

void LiveMachine::MakeDatabase(const std::string& path, const Version& version)
{
  const auto row = [](const std::string& attribute, int number) {
    return "INSERT INTO KFVersion VALUES ('" + attribute + "', '" + std::to_string(number) + "')";
  };
  const int release = 2010;
  Sql(path, {"CREATE TABLE KFVersion (Attribute TEXT(50), [Value] TEXT(50))",
             row("MajorNumber", version.major), row("MinorNumber", version.minor),
             row("CommSPNumber", version.servicePack), row("BuildNumber", version.build),
             row("CommMajorVersion", release), row("CommMinorVersion", 0),
             "CREATE TABLE Info (Name TEXT(50), [Value] MEMO, Type TEXT(50))",
             "CREATE TABLE InfoTableRelations (ID COUNTER, TableName TEXT(50), ColumnName "
             "TEXT(50), TypeProperty TEXT(50))"});
}

void LiveMachine::AddProduct(const std::string& name, const Version& version)
{
  MakeDatabase(ProductFile(name), version);
  DataSourceTable.Append({L"x64", Handle(name), Handle(ConnectionStringOf(ProductFile(name)))});
}

void LiveMachine::InstallProduct(const Version& version)
{
  MakeDatabase(ProductFile("QuillRules"), version);
  std::string elements;
  for (const std::string& name : ProductNames()) {
    Files().Put(ProductFile(name), Files().Read(ProductFile("QuillRules")));
    elements += Entry(name, ConnectionStringOf(ProductFile(name)));
  }
  PutConfiguration(elements);
  SetUserConnection("QuillProfiles2010", ConnectionStringOf(ProductFile("QuillProfiles2010")));
  SetMachineConnection("NVCMapping2010", ConnectionStringOf(ProductFile("NVCMapping2010")));
  EXPECT_EQ(Load(), 17);
  ClearDiary();
}

void LiveMachine::AddLivePatch(const std::string& name, const Version& version)
{
  MakeDatabase(PatchFile(name), version);
  Sql(PatchFile(name),
      {"CREATE TABLE UpdateTable (ID COUNTER, Base TEXT(50), Source TEXT(50), Target TEXT(50), "
       "DeleteRows BIT, Recreate BIT, CreateIfMissing BIT)"});
}

void LiveMachine::AddLiveProjectPatch(const std::string& name,
                                      const std::map<std::string, int>& projectsVersion)
{
  AddLivePatch("Projects\\" + name, {});
  MakeProjectsVersion(ProjectFile(name), projectsVersion);
}

void LiveMachine::AddStep(const std::string& patchFile, const std::string& database,
                          const std::string& source, const std::string& target,
                          const std::string& flags)
{
  Sql(patchFile, {"INSERT INTO UpdateTable (Base, Source, Target, DeleteRows, Recreate, "
                  "CreateIfMissing) VALUES ('" +
                  database + "', '" + source + "', '" + target + "', " + flags + ")"});
}

void LiveMachine::MakeProjectsVersion(const std::string& path,
                                      const std::map<std::string, int>& numbers)
{
  Sql(path, {"CREATE TABLE KFProjectsVersion (Attribute TEXT(255), [Value] TEXT(255))"});
  for (const auto& [attribute, number] : numbers)
    Sql(path, {"INSERT INTO KFProjectsVersion VALUES ('" + attribute + "', '" +
               std::to_string(number) + "')"});
}

std::string LiveMachine::StoredVersion(const std::string& name)
{
  const auto number = [&name](const std::string& attribute) {
    std::string text;
    for (const std::string& row :
         SelectRows(ProductFile(name),
                    "SELECT [Value] FROM KFVersion WHERE [Attribute]='" + attribute + "'"))
      text += row;
    return text;
  };
  return number("MajorNumber") + "." + number("MinorNumber") + " sp " + number("CommSPNumber") +
         " build " + number("BuildNumber") + " comm " + number("CommMajorVersion") + "." +
         number("CommMinorVersion");
}

UpdateMachine::Lines LiveMachine::StoredProjectsVersion(const std::string& name)
{
  return SelectRows(ProductFile(name), "SELECT * FROM KFProjectsVersion ORDER BY Attribute");
}

UpdateMachine::Lines LiveMachine::RunUpdate()
{
  updatePromptPending = true;
  ClearDiary();
  DatabaseUpdateManager manager;
  const size_t begin = Diary().size();
  EXPECT_EQ(manager.Run(), 1);
  return Sent(begin);
}

void LiveMachine::SetReadOnly(const std::string& path, bool isReadOnly)
{
  // The format that a writer has to know, in the header of the file.
  constexpr size_t writeVersionOffset = 18;
  std::string bytes = Files().Read(path);
  ASSERT_GT(bytes.size(), writeVersionOffset);
  bytes[writeVersionOffset] = isReadOnly ? 3 : 1;
  Files().Put(path, bytes);
}

std::map<std::string, std::string> LiveMachine::AllFiles()
{
  std::map<std::string, std::string> files;
  const std::filesystem::path root = Files().UnixPath("C:\\");
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    const std::string name = std::filesystem::relative(entry.path(), root).string();
    std::string path = "C:\\" + name;
    std::replace(path.begin(), path.end(), '/', '\\');
    files[name] = entry.is_regular_file() ? Files().Read(path) : "folder";
  }
  return files;
}

void LiveMachine::ExpectSameFiles(const std::map<std::string, std::string>& before)
{
  const auto after = AllFiles();
  EXPECT_EQ(after.size(), before.size());
  for (const auto& [name, bytes] : before) {
    ASSERT_TRUE(after.contains(name)) << name;
    EXPECT_TRUE(after.at(name) == bytes) << name << " has changed.";
  }
}
