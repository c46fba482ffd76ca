#include "tests/system/LauncherTest.h"

#include <shlobj.h>

namespace {

const std::wstring StartupDescription =
    L"KF component in charge of loading or unloading the proper KF version";
const std::wstring DemandDescription =
    L"KF component in charge of loading the proper KF version on demand";
const std::wstring DesignerDescription =
    L"KF component in charge of loading the proper Profile Designer version on demand";

std::wstring CommonFolder(int folder)
{
  wchar_t path[MAX_PATH] = {};
  EXPECT_TRUE(SHGetSpecialFolderPathW(nullptr, path, folder, FALSE));
  return std::wstring(path) + L"\\Norvane\\";
}

class Registration : public LauncherTest
{
protected:
  static std::wstring Applications(const std::wstring& version, const std::wstring& product)
  {
    return HostKey(version, product) + L"\\Applications";
  }

  static void ExpectEntry(const std::wstring& key, const std::wstring& description,
                          const std::wstring& control, const std::wstring& loader)
  {
    EXPECT_EQ(User.ReadTree(key).size(), key.ends_with(L"Designer") ? 9u : 3u) << key;
    EXPECT_EQ(User.ReadText(key, L"DESCRIPTION"), description) << key;
    EXPECT_EQ(User.ReadText(key, L"LOADCTRLS"), control) << key;
    EXPECT_EQ(User.ReadText(key, L"LOADER"), loader) << key;
  }

  static void ExpectAllEntries(const std::wstring& key, const std::wstring& folder,
                               const std::wstring& suffix)
  {
    const std::wstring demand = folder + L"KFDemandLoadHelper" + suffix;
    ExpectEntry(key + L"\\QuillStartupLoader", StartupDescription, L"2",
                folder + L"QuillStartupLoader" + suffix);
    ExpectEntry(key + L"\\Tarnwheels", DemandDescription, L"13", demand);
    ExpectEntry(key + L"\\Kestrelforge", DemandDescription, L"13", demand);
    ExpectEntry(key + L"\\QuillProfileDesigner", DesignerDescription, L"13",
                folder + L"ProfDesignDemandLoadHelper" + suffix);
  }
};

}  // namespace

TEST_F(Registration, A64BitHostGetsFourEntriesFromThe64BitCommonFiles)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Run();
  ExpectAllEntries(Applications(L"R17.1", L"ABCD-0001"), CommonFolder(CSIDL_PROGRAM_FILES_COMMON),
                   L"8x64.arx");
}

TEST_F(Registration, A32BitHostGetsFourEntriesFromThe32BitCommonFiles)
{
  InstallHost(L"R18.0", L"ABCD-0001", Machine32);
  Run();
  ExpectAllEntries(Applications(L"R18.0", L"ABCD-0001"),
                   CommonFolder(CSIDL_PROGRAM_FILES_COMMONX86), L"9x86.arx");
}

TEST_F(Registration, TheWidthOfTheHelpersFollowsTheHostForOldReleasesToo)
{
  InstallHost(L"R16.2", L"ABCD-0001");
  Run();
  ExpectAllEntries(Applications(L"R16.2", L"ABCD-0001"), CommonFolder(CSIDL_PROGRAM_FILES_COMMON),
                   L"7x64.arx");
}

TEST_F(Registration, AHostOfVersion15IsRegisteredForItsUser)
{
  InstallHost15(L"R15.0", L"OLDX-0001");
  User.MakeKey(HostKey(L"R15.0", L"OLDX-0001"));
  Run();
  ExpectAllEntries(Applications(L"R15.0", L"OLDX-0001"),
                   CommonFolder(CSIDL_PROGRAM_FILES_COMMONX86), L"6x86.arx");
}

TEST_F(Registration, AHostThatTheUserNeverStartedGetsNoEntry)
{
  InstallHost15(L"R15.0", L"OLDX-0001");
  EXPECT_EQ(Run().hosts.size(), 1u);
  EXPECT_FALSE(User.HasKey(AutodeskKey));
}

TEST_F(Registration, TheCommandsOfTheProfileDesignerAreListed)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Run();
  const std::wstring key =
      Applications(L"R17.1", L"ABCD-0001") + L"\\QuillProfileDesigner\\Commands";
  EXPECT_EQ(User.ReadTree(key).size(), 6u);
  for (const wchar_t* command :
       {L"QulM4ProfileDesigner", L"TARN_AddCoord", L"TARN_addProfiles", L"TARN_addSelectedProfiles",
        L"TARN_NUMDIVS", L"TARN_userprofmenu"}) {
    EXPECT_EQ(User.ReadText(key, command), command);
  }
}

TEST_F(Registration, ControlsAreNumbersOfFourBytes)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Run();
  const std::optional<RegistryRecord> value =
      User.ReadValue(Applications(L"R17.1", L"ABCD-0001") + L"\\Tarnwheels", L"LOADCTRLS");
  ASSERT_TRUE(value.has_value());
  EXPECT_EQ(value->type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(value->bytes, (std::vector<BYTE>{13, 0, 0, 0}));
}

TEST_F(Registration, ASecondRunLeavesChangedEntriesAlone)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Run();
  const std::wstring key = Applications(L"R17.1", L"ABCD-0001");
  User.WriteText(key + L"\\Tarnwheels", L"LOADER", L"changed");
  User.RemoveTree(key + L"\\Kestrelforge");
  const std::vector<RegistryRecord> changed = User.ReadTree(key);
  Run();
  EXPECT_EQ(User.ReadTree(key), changed);
}

TEST_F(Registration, AChangedWidthIsNotRegisteredAgain)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Run();
  const std::vector<RegistryRecord> first = User.ReadTree(Applications(L"R17.1", L"ABCD-0001"));
  Machine64.RemoveTree(AutodeskKey);
  InstallHost(L"R17.1", L"ABCD-0001", Machine32);
  EXPECT_EQ(Run().hosts.size(), 1u);
  EXPECT_EQ(User.ReadTree(Applications(L"R17.1", L"ABCD-0001")), first);
}

TEST_F(Registration, WithoutItsMarkerEverythingIsWrittenAgain)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Run();
  const std::wstring key = Applications(L"R17.1", L"ABCD-0001");
  const std::vector<RegistryRecord> first = User.ReadTree(key);
  User.WriteText(key + L"\\Tarnwheels", L"LOADER", L"changed");
  User.RemoveTree(key + L"\\QuillStartupLoader");
  Run();
  EXPECT_EQ(User.ReadTree(key), first);
}

TEST_F(Registration, TheMarkerAloneKeepsEverythingFromBeingWritten)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  const std::wstring key = Applications(L"R17.1", L"ABCD-0001");
  User.MakeKey(key + L"\\QuillStartupLoader");
  Run();
  EXPECT_EQ(User.ReadTree(key).size(), 2u);
}

TEST_F(Registration, EachHostHasItsOwn)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  InstallHost(L"R18.0", L"WXYZ-0001");
  Run();
  Run(L"/AcadVer 17");
  EXPECT_TRUE(User.HasKey(Applications(L"R18.0", L"WXYZ-0001") + L"\\QuillStartupLoader"));
  EXPECT_TRUE(User.HasKey(Applications(L"R17.1", L"ABCD-0001") + L"\\QuillStartupLoader"));
}

TEST_F(Registration, AnExactlyDemandedHostIsRegisteredInAKeyBesideItsOwn)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Run(L"/AcadVer R17.1\\ABCD-0001");
  EXPECT_FALSE(User.HasKey(Applications(L"R17.1", L"ABCD-0001")));
  ExpectAllEntries(HostKey(L"R17.1", L"ABCD-0001Applications"),
                   CommonFolder(CSIDL_PROGRAM_FILES_COMMON), L"8x64.arx");
}

TEST_F(Registration, TheMarkerInTheKeyBesideIsRespected)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Run(L"/AcadVer R17.1\\ABCD-0001");
  const std::wstring key = HostKey(L"R17.1", L"ABCD-0001Applications");
  User.WriteText(key + L"\\Tarnwheels", L"LOADER", L"changed");
  const std::vector<RegistryRecord> changed = User.ReadTree(key);
  Run(L"/AcadVer R17.1\\ABCD-0001");
  EXPECT_EQ(User.ReadTree(key), changed);
}
