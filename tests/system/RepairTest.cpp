#include "sandbox/common/SandboxFiles.h"
#include "tests/system/LauncherTest.h"

#include <msi.h>
#include <shlobj.h>

namespace {

const wchar_t* const ServerKey = L"CLSID\\{4996A28C-5085-4349-8D86-81F00F3376F5}\\InprocServer32";
const std::wstring ProductsKey = L"SOFTWARE\\Norvane\\Kestrelforge\\2010\\Products";
const std::wstring ModeKey = L"Software\\KestrelforgeSandbox\\";

struct Package
{
  const wchar_t* name;
  const wchar_t* code;
};

const Package Application = {L"Application", L"{5C1B5D0A-0E5B-4B0B-9A53-2F6B7D0C1A01}"};
const Package Content = {L"Content", L"{7E2C6E1B-1F6C-4C1C-8B64-3A7C8E1D2B01}"};

std::wstring SpecialFolder(int folder)
{
  wchar_t path[MAX_PATH] = {};
  EXPECT_TRUE(SHGetSpecialFolderPathW(nullptr, path, folder, FALSE));
  return path;
}

// The modes that the installer was asked for are read from the products themselves: each stores the
// letters of the last one.
class Repair : public LauncherTest
{
protected:
  static void SetUpTestSuite()
  {
    MsiSetInternalUI(INSTALLUILEVEL_NONE, nullptr);
    for (const Package& package : {Application, Content}) {
      const std::wstring file = SandboxFile(L"Kestrelforge" + std::wstring(package.name) + L".msi");
      ASSERT_EQ(MsiInstallProductW(file.c_str(), L""), static_cast<UINT>(ERROR_SUCCESS)) << file;
    }
  }

  static void TearDownTestSuite()
  {
    for (const Package& package : {Application, Content}) {
      MsiConfigureProductW(package.code, INSTALLLEVEL_DEFAULT, INSTALLSTATE_ABSENT);
    }
  }

  void SetUp() override
  {
    LauncherTest::SetUp();
    InstallHost(L"R18.0", L"ABCD-0001");
    DeleteFileW(LoaderFile().c_str());
    for (const Package& package : {Application, Content}) {
      User.WriteText(ModeKey + package.name, L"ReinstallMode", L"not asked");
    }
    AddProduct(Application.code);
  }

  void TearDown() override { DeleteFileW(LoaderFile().c_str()); }

  static std::wstring LoaderFile()
  {
    return SpecialFolder(CSIDL_PROGRAM_FILES_COMMONX86) + L"\\Norvane\\QuillStartupLoader8x86.arx";
  }

  static void AddProduct(const std::wstring& code)
  {
    Machine32.WriteText(ProductsKey, code, L"Kestrelforge");
  }

  static void RegisterServer(const std::wstring& path)
  {
    Classes32.WriteText(ServerKey, L"", path);
  }

  static void LayLoader(const std::wstring& name)
  {
    ASSERT_TRUE(MakeFolders(FolderOf(LoaderFile())));
    ASSERT_TRUE(CopyFileW(SandboxFile(name).c_str(), LoaderFile().c_str(), FALSE));
  }

  std::wstring ModeAfterRun(const Package& package = Application)
  {
    EXPECT_EQ(Run().hosts.size(), 1u);
    return ModeOf(package);
  }

  static std::wstring ModeOf(const Package& package)
  {
    return User.ReadText(ModeKey + package.name, L"ReinstallMode");
  }
};

const wchar_t* const LongServer = L"C:\\KFServer.dll_";
const wchar_t* const UserData = L"u";                // 256
const wchar_t* const UserDataAndOlderFiles = L"ou";  // 260

}  // namespace

TEST_F(Repair, WithoutServerAndLoaderNothingIsRepaired)
{
  EXPECT_EQ(ModeAfterRun(), L"not asked");
}

TEST_F(Repair, AServerPathOfFifteenCharactersIsTooShort)
{
  RegisterServer(L"C:\\KFServer.dll");
  EXPECT_EQ(ModeAfterRun(), L"not asked");
}

TEST_F(Repair, AServerPathOfSixteenCharactersRepairsTheUsersData)
{
  RegisterServer(LongServer);
  EXPECT_EQ(ModeAfterRun(), UserData);
}

TEST_F(Repair, AServerOfThe64BitViewDoesNotCount)
{
  Classes64.WriteText(ServerKey, L"", LongServer);
  EXPECT_EQ(ModeAfterRun(), L"not asked");
}

TEST_F(Repair, AnOlderLoaderBringsOlderFilesToo)
{
  LayLoader(L"LoaderOlder.arx");
  EXPECT_EQ(ModeAfterRun(), UserDataAndOlderFiles);
}

TEST_F(Repair, AServerDoesNotChangeTheModeOfAnOlderLoader)
{
  RegisterServer(LongServer);
  LayLoader(L"LoaderOlder.arx");
  EXPECT_EQ(ModeAfterRun(), UserDataAndOlderFiles);
}

TEST_F(Repair, ALoaderWithTheSameFirstNumberIsNotOlder)
{
  LayLoader(L"LoaderSame.arx");
  EXPECT_EQ(ModeAfterRun(), L"not asked");
}

TEST_F(Repair, WithTheSameFirstNumberAServerRepairsTheUsersData)
{
  RegisterServer(LongServer);
  LayLoader(L"LoaderSame.arx");
  EXPECT_EQ(ModeAfterRun(), UserData);
}

TEST_F(Repair, ANewerLoaderIsNotOlder)
{
  LayLoader(L"LoaderNewer.arx");
  EXPECT_EQ(ModeAfterRun(), L"not asked");
}

TEST_F(Repair, ALoaderWithoutAVersionIsNotOlder)
{
  LayLoader(L"LoaderNoVersion.arx");
  EXPECT_EQ(ModeAfterRun(), L"not asked");
}

TEST_F(Repair, TheLoaderOfRelease2IsTheReferenceForEveryHost)
{
  LayLoader(L"LoaderOlder.arx");
  ASSERT_TRUE(MoveFileExW(LoaderFile().c_str(),
                          (FolderOf(LoaderFile()) + L"\\QuillStartupLoader9x64.arx").c_str(),
                          MOVEFILE_REPLACE_EXISTING));
  EXPECT_EQ(ModeAfterRun(), L"not asked");
}

TEST_F(Repair, EveryProductIsRepairedPastAnUnknownOne)
{
  RegisterServer(LongServer);
  AddProduct(L"{60000000-0000-0000-0000-000000000000}");
  AddProduct(Content.code);
  EXPECT_EQ(ModeAfterRun(Application), UserData);
  EXPECT_EQ(ModeOf(Content), UserData);
}

TEST_F(Repair, AProductThatIsNotListedIsLeftAlone)
{
  RegisterServer(LongServer);
  EXPECT_EQ(ModeAfterRun(Content), L"not asked");
  EXPECT_EQ(ModeOf(Application), UserData);
}

TEST_F(Repair, AnEmptyListOfProductsIsNoError)
{
  RegisterServer(LongServer);
  Machine32.RemoveTree(ProductsKey);
  Machine32.MakeKey(ProductsKey);
  EXPECT_EQ(ModeAfterRun(), L"not asked");
}

TEST_F(Repair, AMissingListOfProductsIsNoError)
{
  RegisterServer(LongServer);
  Machine32.RemoveTree(ProductsKey);
  EXPECT_EQ(ModeAfterRun(), L"not asked");
}

TEST_F(Repair, AListOfThe64BitViewIsNotRead)
{
  RegisterServer(LongServer);
  Machine32.RemoveTree(ProductsKey);
  Machine64.WriteText(ProductsKey, Application.code, L"Kestrelforge");
  EXPECT_EQ(ModeAfterRun(), L"not asked");
}

TEST_F(Repair, BringsADeletedFileBack)
{
  const std::wstring file =
      SpecialFolder(CSIDL_PROGRAM_FILESX86) + L"\\Norvane\\Kestrelforge Application\\readme.txt";
  LayLoader(L"LoaderOlder.arx");
  ASSERT_TRUE(DeleteFileW(file.c_str())) << file;
  Run();
  EXPECT_NE(GetFileAttributesW(file.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(Repair, WithoutAHostNothingIsRepaired)
{
  RegisterServer(LongServer);
  Machine64.RemoveTree(AutodeskKey);
  EXPECT_EQ(Run().hosts.size(), 0u);
  EXPECT_EQ(ModeOf(Application), L"not asked");
}
