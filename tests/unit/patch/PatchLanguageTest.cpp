// Steps of patches that hold texts in several languages.
#include "database/QulPatchDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/patch/PatchMachine.h"

namespace {

constexpr uint32_t French = 1036;
constexpr uint32_t Dutch = 1043;

// Statements of the target succeed, and the number is its key.
class PatchLanguage : public PatchMachine
{
protected:
  void SetUp() override
  {
    PutKey("Id");
    Target().OtherStatements(SQL_SUCCESS);
  }

  // NewParts has the columns of another table for each language.
  static void PutVariants(const std::string& variants)
  {
    Patch().Table("Info", {{"newparts", variants, "LanguageDependentTables"}});
    PutSource({{1, "Bolt"}});
  }

  static void PutVariant(const std::string& table, const char* name)
  {
    Patch().Columns(table, PartsColumns()).Table(table, {{1, name}});
  }

  // NewParts has a name for the base, French and Dutch.
  static void PutLanguageColumns(const OdbcRows& rows)
  {
    Patch()
        .Table("Info", {{"NewParts", "Name;Name_fr;Name_nl", "LanguageDependent"}})
        .Columns("NewParts", LanguageColumns())
        .Table("NewParts", rows);
  }
  static std::vector<OdbcColumn> LanguageColumns()
  {
    return {{"Id", SQL_INTEGER, 10, 0},
            {"Name", SQL_WVARCHAR, 30},
            {"Name_fr", SQL_WVARCHAR, 30},
            {"Name_nl", SQL_WVARCHAR, 30}};
  }

  Lines ChangesOfCreatingFor(const std::string& database)
  {
    PutLanguageColumns({{1, "Bolt", "Boulon", "Bout"}});
    UpdateStep step = CreateStep();
    step.database.Assign(WideText(database).c_str());
    Run(step);
    return Changes();
  }
};

}  // namespace

TEST_F(PatchLanguage, ReadsTheTableOfTheLanguageAndKeepsTheTargetsName)
{
  SetLanguage(French);
  PutVariants("NewParts;NewParts_fr;NewParts_nl");
  PutVariant("NewParts_fr", "Boulon");
  Run(CreateStep());
  EXPECT_EQ(Changes(), (Lines{"CREATE TABLE Parts ([Id] LONG NOT NULL ,[Name] TEXT(30) NULL,"
                              "PRIMARY KEY ([Id]));",
                              "INSERT INTO [Parts] ([Id],[Name]) VALUES (1,'Boulon');"}));
  EXPECT_EQ(DiaryOf({"SQLColumnsW"}),
            (Lines{R"(SQLColumnsW(stmt#8, null 0, null 0, "NewParts_fr" -3, null 0) = 0)",
                   R"(SQLColumnsW(stmt#9, null 0, null 0, "Parts" -3, null 0) = 0)",
                   R"(SQLColumnsW(stmt#10, null 0, null 0, "NewParts_fr" -3, null 0) = 0)"}));
}

TEST_F(PatchLanguage, DeletesWhatTheTableOfTheLanguageLists)
{
  SetLanguage(French);
  PutVariants("NewParts;NewParts_fr");
  PutVariant("NewParts_fr", "Boulon");
  Patch().Query("SELECT [Id] FROM NewParts_fr", {{7}});
  PutTarget();
  Run(StepOf(true, false, false));
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]=7;"});
}

TEST_F(PatchLanguage, WithoutATableForItEndsTheStepWithAnEmptyName)
{
  SetLanguage(Dutch);
  PutVariants("NewParts;NewParts_fr");
  PutTarget();
  Run(RecreateStep());
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Source table  not found in patch database"}));
  EXPECT_TRUE(DiaryOf({"SQLExecDirectW"}).empty());
}

TEST_F(PatchLanguage, WithATableThatIsMissingEndsTheStepWithItsName)
{
  SetLanguage(French);
  PutVariants("NewParts;NewParts_fr");
  Run(CreateStep());
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Source table NewParts_fr not found in patch database"}));
}

TEST_F(PatchLanguage, IsThatOfThePatchAndNotOfTheTarget)
{
  SetLanguage(French);
  Target().Table("Info", {{"NewParts", "NewParts;NewParts_fr", "LanguageDependentTables"}});
  PutSource({{1, "Bolt"}});
  Run(CreateStep());
  EXPECT_EQ(Changes()[1], "INSERT INTO [Parts] ([Id],[Name]) VALUES (1,'Bolt');");
}

TEST_F(PatchLanguage, GivesANewTableItsTextsAndNoColumnsOfItsOwn)
{
  SetLanguage(Dutch);
  EXPECT_EQ(ChangesOfCreatingFor("QuillBase"),
            (Lines{"CREATE TABLE Parts ([Id] LONG NOT NULL ,[Name] TEXT(30) NULL,"
                   "PRIMARY KEY ([Id]));",
                   "INSERT INTO [Parts] ([Id],[Name]) VALUES (1,'Bout');"}));
}

TEST_F(PatchLanguage, GivesTheProfilesDatabaseTheColumnsOfAllLanguages)
{
  SetLanguage(Dutch);
  for (const char* name : {"QuillProfiles2010", "QUILLprofiles2010"}) {
    EXPECT_EQ(ChangesOfCreatingFor(name),
              (Lines{"CREATE TABLE Parts ([Id] LONG NOT NULL ,[Name] TEXT(30) NULL ,"
                     "[Name_fr] TEXT(30) NULL ,[Name_nl] TEXT(30) NULL,PRIMARY KEY ([Id]));",
                     "INSERT INTO [Parts] ([Id],[Name],[Name_fr],[Name_nl]) VALUES "
                     "(1,'Bout','Boulon','Bout');"}))
        << name;
    CloseBoth();
  }
}

TEST_F(PatchLanguage, GivesOtherDatabasesNoneOfThem)
{
  SetLanguage(Dutch);
  for (const char* name : {"QuillProfiles", "QuillProfiles20100", "QuillRules", ""}) {
    EXPECT_EQ(ChangesOfCreatingFor(name)[1], "INSERT INTO [Parts] ([Id],[Name]) VALUES (1,'Bout');")
        << name;
    CloseBoth();
  }
}

TEST_F(PatchLanguage, GivesATableThatIsThereAllColumnsThatItHas)
{
  SetLanguage(French);
  PutLanguageColumns({{1, "Bolt", "Boulon", "Bout"}});
  Target().Columns("Parts", LanguageColumns());
  Run(MergeStep());
  EXPECT_EQ(Changes(), Lines{"UPDATE [Parts]  SET [Name]='Boulon',[Name_fr]='Boulon',"
                             "[Name_nl]='Bout' WHERE [Id]=1"});
}

TEST_F(PatchLanguage, ThatHasNoTextForARowLeavesItsOwn)
{
  SetLanguage(French);
  PutLanguageColumns({{1, "Bolt", "", "Bout"}, {2, "Nut", "Boulon", ""}});
  PutTarget();
  Run(MergeStep());
  EXPECT_EQ(Changes(), (Lines{"UPDATE [Parts]  SET [Name]='Bolt' WHERE [Id]=1",
                              "UPDATE [Parts]  SET [Name]='Boulon' WHERE [Id]=2"}));
}

TEST_F(PatchLanguage, PlaysNoPartInConditions)
{
  SetLanguage(French);
  PutKey("Name");
  PutLanguageColumns({{1, "Bolt", "Boulon", "Bout"}});
  PutTarget();
  Target().OtherStatements(SQL_NO_DATA);
  Run(MergeStep());
  EXPECT_EQ(Changes(), (Lines{"UPDATE [Parts]  SET [Id]=1 WHERE [Name]='Bolt'",
                              "INSERT INTO [Parts] ([Id],[Name]) VALUES (1,'Boulon');"}));
}

TEST_F(PatchLanguage, OfTheTargetsColumnsIsNotAskedFor)
{
  SetLanguage(French);
  PutSource({{1, "Bolt"}});
  PutTarget();
  Target().Table("Info", {{"Parts", "Name;Id", "LanguageDependent"}});
  Run(MergeStep());
  EXPECT_EQ(Changes(), Lines{"UPDATE [Parts]  SET [Name]='Bolt' WHERE [Id]=1"});
}

TEST_F(PatchLanguage, OfAVariantsColumnsIsFoundUnderTheVariantsName)
{
  SetLanguage(French);
  Patch()
      .Table("Info", {{"NewParts", "NewParts;NewParts_fr", "LanguageDependentTables"},
                      {"NewParts_fr", "Name;Name_fr", "LanguageDependent"}})
      .Columns("NewParts_fr", LanguageColumns())
      .Table("NewParts_fr", {{1, "Bolt", "Boulon", "Bout"}});
  PutTarget();
  Run(MergeStep());
  EXPECT_EQ(Changes(), Lines{"UPDATE [Parts]  SET [Name]='Boulon' WHERE [Id]=1"});
}

TEST_F(PatchLanguage, MayHideTheKeyOfANewTable)
{
  SetLanguage(French);
  PutKey("Name_fr");
  PutLanguageColumns({{1, "Bolt", "Boulon", "Bout"}});
  Run(CreateStep());
  EXPECT_EQ(Changes()[0], "CREATE TABLE Parts ([Id] LONG NOT NULL ,[Name] TEXT(30) NULL);");
}
