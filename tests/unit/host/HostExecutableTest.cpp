#include "host/HostEnumeration.h"

#include "tests/unit/host/HostMachine.h"

namespace {

const wchar_t* const KeyPath = L"Software\\Autodesk\\AutoCAD\\R17.1\\ABCD-0001\\";
const std::string Subkey = "AutoCAD\\R17.1\\ABCD-0001";

struct LocatedHost
{
  std::string executable;
  bool is64Bit;
};

class HostExecutable : public HostMachine
{
protected:
  static LocatedHost Locate(bool is64BitBefore = false)
  {
    QulString executable = L"before";
    bool is64Bit = is64BitBefore;
    LocateHostExecutable(KeyPath, L"ABCD.exe", executable, is64Bit);
    return {Utf8(executable), is64Bit};
  }

  void SetRawFolder(const std::vector<unsigned char>& bytes)
  {
    SetRaw({HKEY_LOCAL_MACHINE, RegistryView::Native}, Subkey, "AcadLocation", bytes);
  }
};

}  // namespace

TEST_F(HostExecutable, OfAKeyInBothViewsIsThe64BitOne)
{
  Install(RegistryView::Native, Subkey, "C:\\Host64");
  Install(RegistryView::Wow32, Subkey, "C:\\Host32");
  const LocatedHost host = Locate();
  EXPECT_EQ(host.executable, "C:\\Host64\\ABCD.exe");
  EXPECT_TRUE(host.is64Bit);
}

TEST_F(HostExecutable, OfAKeyInBothViewsIsThe64BitOneThoughThatRecordsNoFolder)
{
  AddKey({HKEY_LOCAL_MACHINE, RegistryView::Native}, Subkey);
  Install(RegistryView::Wow32, Subkey, "C:\\Host32");
  const LocatedHost host = Locate();
  EXPECT_EQ(host.executable, "\\ABCD.exe");
  EXPECT_TRUE(host.is64Bit);
}

TEST_F(HostExecutable, OfAKeyInThe32BitViewLeavesTheFlagAlone)
{
  Install(RegistryView::Wow32, Subkey, "C:\\Host32");
  EXPECT_EQ(Locate().executable, "C:\\Host32\\ABCD.exe");
  EXPECT_FALSE(Locate(false).is64Bit);
  EXPECT_TRUE(Locate(true).is64Bit);
}

TEST_F(HostExecutable, OfAKeyInNeitherViewLeavesExecutableAndFlagAlone)
{
  EXPECT_EQ(Locate().executable, "before");
  EXPECT_FALSE(Locate(false).is64Bit);
  EXPECT_TRUE(Locate(true).is64Bit);
}

TEST_F(HostExecutable, IsNotLookedForBelowTheUser)
{
  SetText(UserHosts(), Subkey, "AcadLocation", "C:\\Host");
  EXPECT_EQ(Locate().executable, "before");
}

TEST_F(HostExecutable, IsLookedForInTheNativeViewAndThenInThe32BitView)
{
  Install(RegistryView::Wow32, Subkey, "C:\\Host32");
  (void)Locate();
  const Lines expected = {
      R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD\R17.1\ABCD-0001\", 0, 0x1) = 2)",
      R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD\R17.1\ABCD-0001\", 0, 0x201) = 0 #1)",
      R"(RegQueryValueExW(#1, "AcadLocation", type null, 500) = 0)", R"(RegCloseKey(#1) = 0)"};
  EXPECT_EQ(Diary(), expected);
}

TEST_F(HostExecutable, InTheNativeViewTakesOneOpen)
{
  Install(RegistryView::Native, Subkey, "C:\\Host64");
  (void)Locate();
  const Lines expected = {
      R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD\R17.1\ABCD-0001\", 0, 0x1) = 0 #1)",
      R"(RegQueryValueExW(#1, "AcadLocation", type null, 500) = 0)", R"(RegCloseKey(#1) = 0)"};
  EXPECT_EQ(Diary(), expected);
}

TEST_F(HostExecutable, InNeitherViewEndsAfterTwoOpens)
{
  (void)Locate();
  EXPECT_EQ(Diary().size(), 2u);
  EXPECT_EQ(DiaryOf({"RegOpenKeyExW"}).size(), 2u);
}

TEST_F(HostExecutable, IsLookedForIn32BitsToWhereTheNativeKeyMayNotBeRead)
{
  Install(RegistryView::Native, Subkey, "C:\\Host64");
  Install(RegistryView::Wow32, Subkey, "C:\\Host32");
  Registry().DenyAccess(HKEY_LOCAL_MACHINE, RegistryView::Native, "Software\\Autodesk\\" + Subkey,
                        KEY_QUERY_VALUE);
  const LocatedHost host = Locate();
  EXPECT_EQ(host.executable, "C:\\Host32\\ABCD.exe");
  EXPECT_FALSE(host.is64Bit);
}

TEST_F(HostExecutable, StandsBehindOneBackslash)
{
  const struct
  {
    const char* folder;
    const char* executable;
  } rows[] = {{"C:\\Host", "C:\\Host\\ABCD.exe"},
              {"C:\\Host\\", "C:\\Host\\ABCD.exe"},
              {"C:\\", "C:\\ABCD.exe"},
              {"C:\\Host\\\\", "C:\\Host\\\\ABCD.exe"},
              {"C:/Host/", "C:/Host/\\ABCD.exe"},
              {"\\", "\\ABCD.exe"},
              {"", "\\ABCD.exe"}};
  for (const auto& row : rows) {
    Install(RegistryView::Native, Subkey, row.folder);
    EXPECT_EQ(Locate().executable, row.executable) << row.folder;
  }
}

TEST_F(HostExecutable, OfAFolderThatCannotBeReadStandsBehindALoneBackslash)
{
  AddKey({HKEY_LOCAL_MACHINE, RegistryView::Native}, Subkey);
  EXPECT_EQ(Locate().executable, "\\ABCD.exe");
  Install(RegistryView::Native, Subkey, "C:\\Host");
  FailCall("RegQueryValueExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Locate().executable, "\\ABCD.exe");
}

TEST_F(HostExecutable, OfAFolderWithoutTerminatorIsReadToItsEnd)
{
  SetRawFolder(TextBytes("C:\\Host"));
  EXPECT_EQ(Locate().executable, "C:\\Host\\ABCD.exe");
  const std::string longest = "C:\\" + std::string(247, 'h');
  SetRawFolder(TextBytes(longest));
  EXPECT_EQ(Locate().executable, longest + "\\ABCD.exe");
}

TEST_F(HostExecutable, OfAFolderLongerThanItsBufferStandsBehindALoneBackslash)
{
  SetRawFolder(TextBytesWithTerminator("C:\\" + std::string(247, 'h')));
  EXPECT_EQ(Locate().executable, "\\ABCD.exe");
  SetRawFolder(std::vector<unsigned char>(60001, 0x68));
  EXPECT_EQ(Locate().executable, "\\ABCD.exe");
}

TEST_F(HostExecutable, IsFoundThoughTheCloseFails)
{
  Install(RegistryView::Native, Subkey, "C:\\Host");
  FailCall("RegCloseKey", 1, ERROR_INVALID_HANDLE);
  EXPECT_EQ(Locate().executable, "C:\\Host\\ABCD.exe");
  keysLeftOpen = 1;
}
