#include "database/DatabaseNames.h"

#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

TEST(DatabaseNames, StandInTheOrderOfTheUpdate)
{
  const Lines expected = {"QuillRules",
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
  Lines names;
  for (const QulString& name : DatabaseNames)
    names.push_back(TextOf(name));
  EXPECT_EQ(names, expected);
}

TEST(DatabaseNames, HavePlacesForTheThreeOfTheirOwnTreatment)
{
  EXPECT_EQ(TextOf(DatabaseNames[ProfilesDatabase]), "QuillProfiles2010");
  EXPECT_EQ(TextOf(DatabaseNames[CurrentProjectDatabase]), "QuillCurrentProject");
  EXPECT_EQ(TextOf(DatabaseNames[MappingDatabase]), "NVCMapping2010");
}
