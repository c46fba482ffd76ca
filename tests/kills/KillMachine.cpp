#include "tests/kills/KillMachine.h"

#include "tests/doubles/FilesDouble.h"
#include "tests/unit/settings/SettingsMachine.h"

namespace {

constexpr uint32_t German = 1031;

PatchStep Merge(const std::string& database, const std::string& source, const std::string& target,
                const std::vector<PatchRow>& rows)
{
  return {database, source, target, false, false, false, rows};
}

PatchStep Recreate(const std::string& database, const std::string& table,
                   const std::vector<PatchRow>& rows)
{
  return {database, table, table, false, true, false, rows};
}

PatchStep CreateIfMissing(const std::string& database, const std::string& table,
                          const std::vector<PatchRow>& rows)
{
  return {database, table, table, false, false, true, rows};
}

// A table that is there is dropped and made again, and stays empty.
PatchStep Empty(const std::string& database, const std::string& table)
{
  return {database, table, table, false, true, true, {}};
}

PatchStep Delete(const std::string& database, const std::string& source, const std::string& target,
                 const std::vector<PatchRow>& rows)
{
  return {database, source, target, true, false, false, rows};
}

PatchRow Named(int id, const std::string& name)
{
  return {{"Id", std::to_string(id)}, {"Name", name.empty() ? "NULL" : "'" + name + "'"}};
}

// Nearly all tables of this machine have these two columns.
std::string Table(const std::string& name, const std::string& more = ", PRIMARY KEY (Id)")
{
  return "CREATE TABLE " + name + " (Id LONG NOT NULL, Name TEXT(20) NOT NULL" + more + ")";
}

std::string Row(const std::string& table, const std::string& values)
{
  return "INSERT INTO " + table + " VALUES (" + values + ")";
}

std::string Key(const std::string& table)
{
  return "INSERT INTO InfoTableRelations (TableName, ColumnName, TypeProperty) VALUES ('" + table +
         "', 'Id', 'PrimaryKey')";
}

std::string FlagsOf(const PatchStep& step)
{
  const auto digit = [](bool flag) { return std::string(flag ? "1" : "0"); };
  return digit(step.deleteRows) + ", " + digit(step.recreate) + ", " + digit(step.createIfMissing);
}

const Patch Early = {
    "b-early.mdb",
    {1, 1, 0, 10},
    {},
    {Table("NewParts"), Row("NewParts", "1, 'Bolt'"), Row("NewParts", "3, 'Nut'"),
     Row("NewParts", "4, ''"), Table("OldParts"), Row("OldParts", "2, ''"),
     Row("OldParts", "9, ''"), Table("Plates"), Row("Plates", "1, 'thin'"),
     Row("Plates", "2, 'thick'"), Table("TextsDE"), Row("TextsDE", "1, 'Schraube'"),
     Row("TextsDE", "2, 'Mutter'"),
     Row("Info", "'Texts', 'Texts;TextsFR;TextsNL;TextsDE', 'LanguageDependentTables'")},
    // Of the new parts one is there, one is missing, and one is refused: it has no name.
    {Merge("QuillRules", "NewParts", "Parts", {Named(1, "Bolt"), Named(3, "Nut"), Named(4, "")}),
     Delete("QuillRules", "OldParts", "Parts", {{{"Id", "2"}}, {{"Id", "9"}}}),
     CreateIfMissing("QuillBase", "Plates", {Named(1, "thin"), Named(2, "thick")}),
     Merge("QuillBase", "Texts", "Texts", {Named(1, "Schraube"), Named(2, "Mutter")})}};

const Patch Late = {
    "a-late.mdb",
    {1, 2, 1, 3},
    {},
    {"CREATE TABLE Relations (ID LONG, TableName TEXT(50), ColumnName TEXT(50), "
     "TypeProperty TEXT(50))",
     Row("Relations", "50, 'Plates', 'Id', 'PrimaryKey'"),
     Table("Colours", ", NameFR TEXT(20), NameNL TEXT(20), NameDE TEXT(20), PRIMARY KEY (Id)"),
     Row("Colours", "1, 'red', 'rouge', 'rood', 'rot'"), Row("Colours", "2, 'blue', '', '', ''"),
     Row("Info", "'Colours', 'Name;NameFR;NameNL;NameDE', 'LanguageDependent'"), Table("Tints"),
     Row("Tints", "1, 'light'"), Table("Found"), Row("Found", "2, 'Washer'"), Table("Plates"),
     Row("Plates", "2, 'very thick'"), Row("Plates", "3, 'plain'"), Table("Sections"),
     Row("Sections", "2, 'IPE'"), Table("OldMarks", ""), Row("OldMarks", "1, 'one'"),
     Row("OldMarks", "2, 'other'")},
    {Merge("QuillBase", "Relations", "InfoTableRelations",
           {{{"ID", "50"},
             {"TableName", "'Plates'"},
             {"ColumnName", "'Id'"},
             {"TypeProperty", "'PrimaryKey'"}}}),
     Recreate("QuillRules", "Colours", {Named(1, "rot"), Named(2, "blue")}),
     Empty("QuillRules", "Tints"), Merge("QuillRules", "Found", "Parts", {Named(2, "Washer")}),
     Merge("QuillBase", "Plates", "Plates", {Named(2, "very thick"), Named(3, "plain")}),
     CreateIfMissing("QuillProfiles2010", "Sections", {Named(2, "IPE")}),
     Delete("QuillProfiles2010", "OldMarks", "Marks", {Named(1, "one"), Named(2, "other")})}};

const Patch Steel = {
    "steel.mdb",
    {},
    {{"BoltSets", 1}, {"SteelGrades", 2}},
    {Table("Defaults"), Row("Defaults", "1, 'S355'"), Row("Defaults", "2, 'S460'"),
     Table("Standards"), Row("Standards", "1090, 'EN 1090'"), Row("Standards", "1993, 'EN 1993'")},
    {Merge("QuillProject", "Defaults", "Defaults", {Named(1, "S355"), Named(2, "S460")}),
     Recreate("QuillProjectStandards", "Standards",
              {Named(1090, "EN 1090"), Named(1993, "EN 1993")})}};

}  // namespace

const std::vector<Patch>& Patches()
{
  static const std::vector<Patch> patches = {Early, Late};
  return patches;
}

const std::vector<Patch>& ProjectPatches()
{
  static const std::vector<Patch> patches = {Steel};
  return patches;
}

const std::vector<std::string>& Targets()
{
  static const std::vector<std::string> targets = {"QuillRules", "QuillBase", "QuillProfiles2010",
                                                   "QuillProject", "QuillProjectStandards"};
  return targets;
}

void KillMachine::LayOut()
{
  Registry().SetNumber(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentPath, "Language",
                       German);
  LayOutProduct();
  for (const Patch& patch : Patches()) {
    AddLivePatch(patch.name, patch.version);
    LayOutPatch(PatchFile(patch.name), patch);
  }
  for (const Patch& patch : ProjectPatches()) {
    AddLiveProjectPatch(patch.name, patch.projectsVersion);
    LayOutPatch(ProjectFile(patch.name), patch);
  }
}

void KillMachine::LayOutProduct()
{
  AddProduct("QuillRules", {1, 0, 0, 5});
  Sql(ProductFile("QuillRules"),
      {Table("Parts"), Row("Parts", "1, 'bolt'"), Row("Parts", "2, 'washer'"), Key("Parts"),
       Table("Colours"), Row("Colours", "7, 'grey'"), Key("Colours"), Table("Tints"),
       Row("Tints", "1, 'pale'"), Key("Tints")});
  // Half of a new version's numbers make this one newer than all patches.
  AddProduct("QuillBase", {0, 9, 0, 0});
  Sql(ProductFile("QuillBase"), {Table("Texts"), Row("Texts", "1, 'screw'"), Key("Texts")});
  AddProduct("QuillProfiles2010", {1, 1, 0, 10});
  Sql(ProductFile("QuillProfiles2010"),
      {Table("Sections"), Row("Sections", "1, 'HEB'"), Key("Sections"), Table("Marks", ""),
       Row("Marks", "1, 'one'"), Row("Marks", "1, 'two'")});
  SetUserConnection("QuillProfiles2010", ConnectionStringOf(ProductFile("QuillProfiles2010")));
  for (const char* const name : {"QuillRules", "QuillBase", "QuillProfiles2010"})
    MakeProjectsVersion(ProductFile(name), {{"BoltSets", 1}, {"SteelGrades", 2}});
  AddProduct("QuillProject", {1, 2, 1, 3});
  Sql(ProductFile("QuillProject"),
      {Table("Defaults"), Row("Defaults", "1, 'S235'"), Key("Defaults")});
  MakeProjectsVersion(ProductFile("QuillProject"), {{"SteelGrades", 1}});
  AddProduct("QuillProjectStandards", {1, 0, 0, 0});
  Sql(ProductFile("QuillProjectStandards"), {Key("Standards")});
}

void KillMachine::LayOutPatch(const std::string& path, const Patch& patch)
{
  for (const std::string& statement : patch.tables)
    Sql(path, {statement});
  // By their places in the table, the steps for relations would come last.
  for (const bool isForRelations : {false, true}) {
    for (const PatchStep& step : patch.steps) {
      if ((step.target == "InfoTableRelations") == isForRelations)
        AddStep(path, step.database, step.source, step.target, FlagsOf(step));
    }
  }
}
