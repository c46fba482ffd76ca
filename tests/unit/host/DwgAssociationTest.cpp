#include "host/HostSelection.h"

#include "tests/unit/host/HostMachine.h"

namespace {

class DwgAssociation : public HostMachine
{
protected:
  void SetRawClass(DWORD type, const std::vector<unsigned char>& bytes)
  {
    Registry().SetRaw(HKEY_CLASSES_ROOT, RegistryView::Native, ".dwg", "", type, bytes);
  }
};

}  // namespace

TEST_F(DwgAssociation, TheNumberIsMadeOfTheLastTwoCharacters)
{
  const struct
  {
    const char* className;
    int version;
  } rows[] = {{"AutoCAD.Drawing.15", 15}, {"AutoCAD.Drawing.16", 16},
              {"Drawing2017", 17},        {"Drawing.115", 15},
              {"Drawing15a", 5},          {"Drawing.a5", 0},
              {"Drawing.7", 0},           {"Drawing 8", 8},
              {"Drawing-3", -3},          {"Drawing", 0}};
  for (const auto& row : rows) {
    SetDrawingClass(row.className);
    EXPECT_EQ(ReadDwgAssociationVersion(), row.version) << row.className;
  }
}

TEST_F(DwgAssociation, AClassNameShorterThanTwoCharactersCountsWhole)
{
  SetDrawingClass("5");
  EXPECT_EQ(ReadDwgAssociationVersion(), 5);
  SetDrawingClass("");
  EXPECT_EQ(ReadDwgAssociationVersion(), 0);
}

TEST_F(DwgAssociation, WithoutTheKeyTheResultIsMinusOneAndACloseIsStillMade)
{
  EXPECT_EQ(ReadDwgAssociationVersion(), -1);
  EXPECT_EQ(Diary(),
            (Lines{R"(RegOpenKeyExW(HKCR, ".dwg", 0, 0x1) = 2)", "RegCloseKey(null) = 6"}));
}

TEST_F(DwgAssociation, TheDefaultValueIsAskedForByTheEmptyNameAndWith8192Bytes)
{
  SetDrawingClass("AutoCAD.Drawing.15");
  (void)ReadDwgAssociationVersion();
  EXPECT_EQ(Diary(),
            (Lines{R"(RegOpenKeyExW(HKCR, ".dwg", 0, 0x1) = 0 #1)",
                   R"(RegQueryValueExW(#1, "", type null, 8192) = 0)", "RegCloseKey(#1) = 0"}));
}

TEST_F(DwgAssociation, WithoutTheValueTheResultIsMinusOneAndTheKeyIsClosed)
{
  Registry().AddKey(HKEY_CLASSES_ROOT, RegistryView::Native, ".dwg");
  EXPECT_EQ(ReadDwgAssociationVersion(), -1);
  EXPECT_EQ(Diary().back(), "RegCloseKey(#1) = 0");
}

TEST_F(DwgAssociation, AFailedQueryGivesMinusOne)
{
  SetDrawingClass("AutoCAD.Drawing.15");
  FailCall("RegQueryValueExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(ReadDwgAssociationVersion(), -1);
}

TEST_F(DwgAssociation, AKeyThatMayNotBeReadGivesMinusOne)
{
  SetDrawingClass("AutoCAD.Drawing.15");
  Registry().DenyAccess(HKEY_CLASSES_ROOT, RegistryView::Native, ".dwg", KEY_QUERY_VALUE);
  EXPECT_EQ(ReadDwgAssociationVersion(), -1);
  EXPECT_EQ(Diary().back(), "RegCloseKey(null) = 6");
}

TEST_F(DwgAssociation, AFailedCloseChangesNothing)
{
  SetDrawingClass("AutoCAD.Drawing.15");
  FailCall("RegCloseKey", 1, ERROR_INVALID_HANDLE);
  EXPECT_EQ(ReadDwgAssociationVersion(), 15);
  keysLeftOpen = 1;
}

TEST_F(DwgAssociation, AValueWithoutTerminatorIsReadToItsEnd)
{
  SetRawClass(REG_SZ, TextBytes("AutoCAD.Drawing.15"));
  EXPECT_EQ(ReadDwgAssociationVersion(), 15);
}

TEST_F(DwgAssociation, AValueIsReadToItsFirstTerminator)
{
  SetRawClass(REG_SZ, TextBytes(std::string("Drawing.15\0\0", 12)));
  EXPECT_EQ(ReadDwgAssociationVersion(), 15);
  SetRawClass(REG_SZ, TextBytes(std::string("Drawing.15\0.16", 14)));
  EXPECT_EQ(ReadDwgAssociationVersion(), 15);
}

TEST_F(DwgAssociation, AByteTooManyBehindTheTerminatorDoesNoHarm)
{
  std::vector<unsigned char> bytes = TextBytesWithTerminator("Drawing.15");
  bytes.push_back(0x31);
  SetRawClass(REG_SZ, bytes);
  EXPECT_EQ(ReadDwgAssociationVersion(), 15);
}

TEST_F(DwgAssociation, TheTypeOfTheValueIsNotLookedAt)
{
  SetRawClass(REG_BINARY, TextBytesWithTerminator("Drawing.15"));
  EXPECT_EQ(ReadDwgAssociationVersion(), 15);
}

TEST_F(DwgAssociation, AValueOfOneByteOrNoneIsNoNumber)
{
  SetRawClass(REG_SZ, {});
  EXPECT_EQ(ReadDwgAssociationVersion(), 0);
  SetRawClass(REG_SZ, {0x2E});
  EXPECT_EQ(ReadDwgAssociationVersion(), 0);
}

TEST_F(DwgAssociation, AValueThatFillsAllBytesToldIsReadWithoutOverrun)
{
  const std::string name(4094, 'x');
  SetRawClass(REG_SZ, TextBytes(name + "15"));
  EXPECT_EQ(ReadDwgAssociationVersion(), 15);
}

TEST_F(DwgAssociation, AValueLongerThanToldGivesMinusOne)
{
  SetRawClass(REG_SZ, TextBytes(std::string(4095, 'x') + "15"));
  EXPECT_EQ(ReadDwgAssociationVersion(), -1);
  SetRawClass(REG_SZ, TextBytes(std::string(100000, 'x') + "15"));
  EXPECT_EQ(ReadDwgAssociationVersion(), -1);
}
