// What a launch finds to do in databases. Tables are small: each row costs a launch for each way in
// which its statements may fail.
#include "tests/faults/RichDatabases.h"

#include "tests/faults/RichLaunch.h"

const char* const PatchFolder = "C:\\Data\\DatabaseUpdate\\";
const char* const ProjectFolder = "C:\\Data\\DatabaseUpdate\\Projects\\";

namespace {

// All numbers of a version are there, since six of them are written.
std::string VersionTable(const std::string& minorNumber)
{
  return "CREATE TABLE KFVersion ([Attribute] TEXT(50) NOT NULL PRIMARY KEY, [Value] TEXT(50));\n"
         "INSERT INTO KFVersion VALUES ('MajorNumber', '1'), ('MinorNumber', '" +
         minorNumber + "'), ('CommSPNumber', '0'), ('BuildNumber', '" + minorNumber +
         "'), ('CommMajorVersion', '201" + minorNumber + "'), ('CommMinorVersion', '" +
         minorNumber + "');\n";
}

const char* const Relations =
    "CREATE TABLE InfoTableRelations ([ID] LONG NOT NULL PRIMARY KEY, [TableName] TEXT(50), "
    "[ColumnName] TEXT(50), [TypeProperty] TEXT(50));\n";

const char* const Steps =
    "CREATE TABLE UpdateTable ([ID] LONG NOT NULL PRIMARY KEY, [TargetDatabase] TEXT(49), "
    "[SourceTable] TEXT(49), [TargetTable] TEXT(49), [DeleteRows] BIT, [Recreate] BIT, "
    "[CreateIfMissing] BIT);\n";

std::string Rules()
{
  return VersionTable("0") + Relations + R"(INSERT INTO InfoTableRelations VALUES
  (1, 'Parts', 'Id', 'PrimaryKey'), (2, 'Shapes', 'Id', 'Unique');
CREATE TABLE Parts ([Id] LONG NOT NULL PRIMARY KEY, [Name] TEXT(30), [Weight] DOUBLE);
INSERT INTO Parts VALUES (1, 'bolt', 1.5), (2, 'plate', 2.5), (3, 'gone', 3.5);
CREATE TABLE Shapes ([Id] LONG NOT NULL PRIMARY KEY, [Old] TEXT(10));
INSERT INTO Shapes VALUES (1, 'old');
CREATE TABLE Notes ([Code] TEXT(10), [Since] DATE);
INSERT INTO Notes VALUES ('keep', '1/2/2003'), ('drop', '1/2/2003');
CREATE TABLE GradeA ([Id] LONG NOT NULL PRIMARY KEY, [Name] TEXT(10));
CREATE TABLE GradeB ([Id] LONG NOT NULL PRIMARY KEY, [Name] TEXT(10));
INSERT INTO GradeB VALUES (1, 'old');
)";
}

std::string Spring()
{
  return VersionTable("1") + Steps + R"(INSERT INTO UpdateTable VALUES
  (1, 'QuillRules', 'NewParts', 'Parts', 0, 0, 0), (2, 'QuillRules', 'Shapes', 'Shapes', 0, 1, 0),
  (3, 'QuillRules', 'Colours', 'Colours', 0, 0, 1), (4, 'QuillRules', 'OldParts', 'Parts', 1, 0, 0),
  (5, 'QuillRules', 'OldNotes', 'Notes', 1, 0, 0), (6, 'QuillRules', 'Grade*', 'Grade*', 0, 0, 0),
  (7, 'QuillProfiles2010', 'Profiles', 'Profiles', 0, 0, 0),
  (8, 'QuillRules', 'Relations', 'InfoTableRelations', 0, 0, 0);
CREATE TABLE Info ([Name] TEXT(50), [Value] MEMO, [Type] TEXT(255));
INSERT INTO Info VALUES ('Shapes', 'Shapes;ShapesFr;ShapesNl;ShapesDe', 'LanguageDependentTables'),
  ('Colours', 'Name;NameFr;NameNl;NameDe', 'LanguageDependent');
CREATE TABLE Relations ([ID] LONG, [TableName] TEXT(50), [ColumnName] TEXT(50),
  [TypeProperty] TEXT(50));
INSERT INTO Relations VALUES (3, 'GradeA', 'Id', 'PrimaryKey'), (4, 'GradeB', 'Id', 'PrimaryKey');
CREATE TABLE NewParts ([Id] LONG, [Name] TEXT(30), [Weight] DOUBLE);
INSERT INTO NewParts VALUES (2, 'sheet', 4.25), (4, 'O''Neil', 0.5);
CREATE TABLE Shapes ([Id] LONG, [Name] TEXT(20));
INSERT INTO Shapes VALUES (1, 'round');
CREATE TABLE ShapesDe ([Id] LONG, [Name] TEXT(20));
INSERT INTO ShapesDe VALUES (1, 'rund'), (2, 'eckig');
CREATE TABLE Colours ([Code] TEXT(10), [Name] TEXT(20), [NameDe] TEXT(20), [Since] DATE,
  [Used] BIT, [Remark] MEMO);
INSERT INTO Colours VALUES ('r', 'red', 'rot', '31/3/2010', 1, 'a remark'),
  ('b', 'blue', '', '1/4/2010', 0, 'none');
CREATE TABLE OldParts ([Id] LONG);
INSERT INTO OldParts VALUES (3), (9);
CREATE TABLE OldNotes ([Code] TEXT(10), [Since] DATE);
INSERT INTO OldNotes VALUES ('drop', '1/2/2003');
CREATE TABLE GradeNew ([Id] LONG, [Name] TEXT(10));
INSERT INTO GradeNew VALUES (1, 'S235');
CREATE TABLE Profiles ([Id] LONG, [Name] TEXT(20));
INSERT INTO Profiles VALUES (1, 'HEA');
)";
}

std::string Summer()
{
  return VersionTable("2") + Steps + R"(INSERT INTO UpdateTable VALUES
  (1, 'QuillRules', 'Parts', 'Parts', 0, 0, 0),
  (2, 'NVCMapping2010', 'Maps', 'Maps', 0, 0, 0);
CREATE TABLE Parts ([Id] LONG, [Name] TEXT(30));
INSERT INTO Parts VALUES (4, 'angle');
CREATE TABLE Maps ([Id] LONG, [Name] TEXT(20));
INSERT INTO Maps VALUES (7, 'new');
)";
}

std::string Steel()
{
  return VersionTable("0") + Steps + R"(INSERT INTO UpdateTable VALUES
  (1, 'QuillCurrentProject', 'Grades', 'Grades', 0, 0, 1),
  (2, 'QuillRules', 'Grades', 'GradeC', 0, 1, 0);
CREATE TABLE KFProjectsVersion ([Attribute] TEXT(255), [Value] TEXT(255));
INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '2'), ('BoltSets', '1');
CREATE TABLE Grades ([Id] LONG, [Name] TEXT(20));
INSERT INTO Grades VALUES (1, 'S355');
)";
}

std::string Profiles()
{
  return VersionTable("0") + Relations + R"(INSERT INTO InfoTableRelations VALUES
  (1, 'Profiles', 'Id', 'PrimaryKey');
CREATE TABLE Profiles ([Id] LONG NOT NULL PRIMARY KEY, [Name] TEXT(20));
CREATE TABLE KFProjectsVersion ([Attribute] TEXT(255), [Value] TEXT(255));
INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '9'), ('BoltSets', '9');
)";
}

std::string Mapping()
{
  return VersionTable("1") + Relations + R"(INSERT INTO InfoTableRelations VALUES
  (1, 'Maps', 'Id', 'PrimaryKey');
CREATE TABLE Maps ([Id] LONG NOT NULL PRIMARY KEY, [Name] TEXT(20));
INSERT INTO Maps VALUES (7, 'old');
CREATE TABLE KFProjectsVersion ([Attribute] TEXT(255) NOT NULL PRIMARY KEY, [Value] TEXT(255));
INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '9'), ('BoltSets', '0');
)";
}

std::string CurrentProject()
{
  return VersionTable("2");
}

}  // namespace

const std::map<std::string, std::string>& DatabaseScripts()
{
  static const std::map<std::string, std::string> scripts = {
      {FileOf("QuillRules"), Rules()},       {FileOf("QuillProfiles2010"), Profiles()},
      {FileOf("NVCMapping2010"), Mapping()}, {FileOf("QuillCurrentProject"), CurrentProject()},
      {FileOf("Spring.mdb"), Spring()},      {FileOf("Summer.mdb"), Summer()},
      {FileOf("Steel.mdb"), Steel()},
  };
  return scripts;
}
