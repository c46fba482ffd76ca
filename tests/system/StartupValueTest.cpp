#include "tests/system/LauncherTest.h"

namespace {

class StartupValue : public LauncherTest
{
protected:
  void SetUp() override
  {
    LauncherTest::SetUp();
    Machine64.WriteText(EnvironmentKey, L"BinPath", L"C:\\Kestrel64");
    Machine32.WriteText(EnvironmentKey, L"BinPath", L"C:\\Kestrel32");
  }

  static std::wstring LoaderPath() { return User.ReadText(StartupKey, L"Kestrelforge"); }
};

using ProfileValues = LauncherTest;

}  // namespace

TEST_F(StartupValue, A64BitHostGoesWithThe64BitSettings)
{
  InstallHost(L"R18.0", L"ABCD-0001", Machine64);
  Run();
  EXPECT_EQ(LoaderPath(), L"C:\\Kestrel64\\Forge\\BIN\\Kestrelforge9x64.arx");
}

TEST_F(StartupValue, A32BitHostGoesWithThe32BitSettings)
{
  InstallHost(L"R18.0", L"ABCD-0001", Machine32);
  EXPECT_EQ(Run().hosts.size(), 1u);
  EXPECT_EQ(LoaderPath(), L"C:\\Kestrel32\\Forge\\BIN\\Kestrelforge9x86.arx");
}

TEST_F(StartupValue, Release2HasALoaderForEachWidth)
{
  InstallHost(L"R17.1", L"ABCD-0001", Machine32);
  Run();
  EXPECT_EQ(LoaderPath(), L"C:\\Kestrel32\\Forge\\BIN\\Kestrelforge8x86.arx");
}

TEST_F(StartupValue, Release1HasOnly32BitLoadersEvenFor64BitHosts)
{
  InstallHost(L"R16.2", L"ABCD-0001", Machine64);
  Run();
  EXPECT_EQ(LoaderPath(), L"C:\\Kestrel64\\Forge\\BIN\\Kestrelforge7x86.arx");
}

TEST_F(StartupValue, Release0HasOnly32BitLoadersEvenFor64BitHosts)
{
  InstallHost15(L"R15.0", L"OLDX-0001");
  Machine64.WriteText(HostKey(L"R15.0", L"OLDX-0001"), L"AcadLocation",
                      HostFolder(L"R15.0", L"OLDX-0001"));
  Run();
  EXPECT_EQ(LoaderPath(), L"C:\\Kestrel64\\Forge\\BIN\\Kestrelforge6x86.arx");
}

TEST_F(StartupValue, TwoBackslashesBehindTheFolderAreDropped)
{
  InstallHost(L"R18.0", L"ABCD-0001");
  Machine64.WriteText(EnvironmentKey, L"BinPath", L"C:\\Kestrel64\\\\");
  Run();
  EXPECT_EQ(LoaderPath(), L"C:\\Kestrel64\\Forge\\BIN\\Kestrelforge9x64.arx");
}

TEST_F(StartupValue, WithoutAFolderItBeginsWithTheFixedPart)
{
  InstallHost(L"R18.0", L"ABCD-0001");
  Machine64.RemoveTree(L"Software\\Norvane");
  User.WriteText(EnvironmentKey, L"BinPath", L"C:\\of the user");
  EXPECT_EQ(Run().hosts.size(), 1u);
  EXPECT_EQ(LoaderPath(), L"\\Forge\\BIN\\Kestrelforge9x64.arx");
}

TEST_F(StartupValue, IsText)
{
  InstallHost(L"R18.0", L"ABCD-0001");
  Run();
  const std::optional<RegistryRecord> value = User.ReadValue(StartupKey, L"Kestrelforge");
  ASSERT_TRUE(value.has_value());
  EXPECT_EQ(value->type, static_cast<DWORD>(REG_SZ));
}

TEST_F(ProfileValues, AreTextsOfFixedContent)
{
  InstallHost(L"R18.0", L"ABCD-0001");
  Run();
  const std::optional<RegistryRecord> name = User.ReadValue(AddOnKey, L"ProfileName");
  const std::optional<RegistryRecord> description = User.ReadValue(AddOnKey, L"ProfDescription");
  ASSERT_TRUE(name.has_value() && description.has_value());
  EXPECT_EQ(ReadableData(*name), L"Kestrelforge");
  EXPECT_EQ(name->bytes.size(), 26u);
  EXPECT_EQ(ReadableData(*description), L"Kestrelforge Profile");
  EXPECT_EQ(description->bytes.size(), 42u);
}

TEST_F(ProfileValues, TheAddOnsKeyHoldsNothingElse)
{
  InstallHost(L"R18.0", L"ABCD-0001");
  Run();
  EXPECT_EQ(User.ReadTree(L"Software\\Norvane\\Kestrelforge\\2010").size(), 3u);
}

TEST_F(ProfileValues, ASecondRunWritesTheSameValuesAgain)
{
  InstallHost(L"R18.0", L"ABCD-0001");
  Run();
  const std::vector<RegistryRecord> first = User.ReadTree(AddOnKey);
  User.WriteText(AddOnKey, L"ProfileName", L"changed");
  User.WriteText(AddOnKey, L"ProfDescription", L"");
  User.WriteText(StartupKey, L"Kestrelforge", L"changed");
  Run();
  EXPECT_EQ(User.ReadTree(AddOnKey), first);
}
