#include "launcher/InstallRepair.h"

#include "tests/doubles/InstallerDouble.h"
#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/ProcessDouble.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/ShellDouble.h"
#include "tests/doubles/Text.h"
#include "tests/doubles/VersionDouble.h"

#include <gtest/gtest.h>

#include <errno.h>

#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;
using Bytes = std::vector<unsigned char>;

constexpr int CommonFiles32 = 44;

const char* const ServerKey = "CLSID\\{4996A28C-5085-4349-8D86-81F00F3376F5}\\InprocServer32";
const char* const ProductsKey = "SOFTWARE\\Norvane\\Kestrelforge\\2010\\Products";
const char* const LauncherFile = "C:\\Launcher\\KestrelforgeLauncher.exe";
const char* const LoaderFile =
    "C:\\Program Files (x86)\\Common Files\\Norvane\\QuillStartupLoader8x86.arx";

const char* const FirstProduct = "{11111111-0000-0000-0000-000000000001}";
const char* const SecondProduct = "{22222222-0000-0000-0000-000000000002}";
const char* const ThirdProduct = "{33333333-0000-0000-0000-000000000003}";

class InstallRepair : public PlatformTest
{
protected:
  void TearDown() override
  {
    EXPECT_EQ(Registry().OpenHandleCount(), 0);
    PlatformTest::TearDown();
  }

  static void RegisterServer(const std::string& path)
  {
    SetRawServer(REG_SZ, TextBytesWithTerminator(path));
  }

  static void SetRawServer(DWORD type, const Bytes& bytes)
  {
    Registry().SetRaw(HKEY_CLASSES_ROOT, RegistryView::Wow32, ServerKey, "", type, bytes);
  }

  static void SetVersions(const std::string& launcher, const std::string& loader)
  {
    Versions().SetFileVersion(LauncherFile, launcher);
    Versions().SetFileVersion(LoaderFile, loader);
  }

  static void SetOutdatedLoader() { SetVersions("10.1.0.0", "9.9.9.9"); }

  // Lists a product that is installed.
  static void AddProduct(const std::string& code)
  {
    ListProduct(code, TextBytesWithTerminator("Kestrelforge"));
    Installer().AddProduct(code);
  }

  static void ListProduct(const std::string& code, const Bytes& data)
  {
    Registry().SetRaw(HKEY_LOCAL_MACHINE, RegistryView::Wow32, ProductsKey, code, REG_SZ, data);
  }

  static Lines Repairs()
  {
    RepairInstallation();
    return DiaryOf({"MsiReinstallProductW"});
  }

  static std::string RepairLine(const std::string& code, const std::string& mode,
                                unsigned int result = 0)
  {
    return "MsiReinstallProductW(\"" + code + "\", " + mode + ") = " + std::to_string(result);
  }

  static bool IsOutdated(const std::string& launcher, const std::string& loader)
  {
    SetVersions(launcher, loader);
    return IsLoaderOutdated();
  }
};

using InstallRepairDeathTest = InstallRepair;

}  // namespace

TEST_F(InstallRepair, TheCallsComeInOrderWithTheirSizes)
{
  RegisterServer("C:\\Server\\Forge.dll");
  SetVersions("10.1.0.0", "9.9.9.9");
  AddProduct(FirstProduct);
  RepairInstallation();
  const std::string launcher = "\"" + std::string(LauncherFile) + "\"";
  const std::string loader = "\"" + std::string(LoaderFile) + "\"";
  EXPECT_EQ(
      Diary(),
      (Lines{"RegOpenKeyExW(HKCR, \"" + std::string(ServerKey) + "\", 0, 0x20219) = 0 #1",
             "RegQueryValueExW(#1, \"\", type null, 1024) = 0", "RegCloseKey(#1) = 0",
             "GetCurrentProcess()", "GetModuleFileNameExA(current process, null, 260) = 36",
             "CloseHandle(current process) = 1", "SHGetSpecialFolderPathA(null, 44, 0) = 1",
             "GetFileVersionInfoSizeA(" + launcher + ") = 100",
             "GetFileVersionInfoA(" + launcher + ", 0, 100) = 1",
             "VerQueryValueA(\"\\StringFileInfo\\040904b0\\FileVersion\") = 1",
             "GetFileVersionInfoSizeA(" + loader + ") = 100",
             "GetFileVersionInfoA(" + loader + ", 0, 100) = 1",
             "VerQueryValueA(\"\\StringFileInfo\\040904b0\\FileVersion\") = 1",
             "RegOpenKeyExW(HKLM, \"" + std::string(ProductsKey) + "\", 0, 0x20219) = 0 #2",
             "RegEnumValueW(#2, 0, name 512, type 1, data 1024) = 0 \"" +
                 std::string(FirstProduct) + "\"",
             RepairLine(FirstProduct, "0x104"),
             "RegEnumValueW(#2, 1, name 512, type 1, data 1024) = 259", "RegCloseKey(#2) = 0"}));
}

TEST_F(InstallRepair, TheTwoTestsDecideOnTheMode)
{
  struct Situation
  {
    bool registered;
    const char* loaderVersion;
    Lines repairs;
  };
  const Situation situations[] = {{false, "10.0", {}},
                                  {true, "10.0", {RepairLine(FirstProduct, "0x100")}},
                                  {true, "11.0", {RepairLine(FirstProduct, "0x100")}},
                                  {false, "9.0", {RepairLine(FirstProduct, "0x104")}},
                                  {true, "9.0", {RepairLine(FirstProduct, "0x104")}}};
  for (const Situation& situation : situations) {
    ResetPlatform();
    AddProduct(FirstProduct);
    RegisterServer(situation.registered ? "C:\\Server\\Forge.dll" : "");
    SetVersions("10.0", situation.loaderVersion);
    EXPECT_EQ(Repairs(), situation.repairs)
        << situation.registered << " " << situation.loaderVersion;
  }
}

TEST_F(InstallRepair, WithBothTestsFalseTheProductsAreNotLookedAt)
{
  AddProduct(FirstProduct);
  RepairInstallation();
  EXPECT_EQ(DiaryOf({"RegOpenKeyExW"}),
            Lines{"RegOpenKeyExW(HKCR, \"" + std::string(ServerKey) + "\", 0, 0x20219) = 2"});
  EXPECT_EQ(DiaryOf({"RegEnumValueW", "MsiReinstallProductW"}), Lines());
}

TEST_F(InstallRepair, TheVersionsAreReadThoughTheServerIsRegistered)
{
  RegisterServer("C:\\Server\\Forge.dll");
  RepairInstallation();
  EXPECT_EQ(DiaryOf({"GetFileVersionInfoSizeA"}).size(), 2u);
}

TEST_F(InstallRepair, WithoutAProductsKeyNothingIsRepaired)
{
  SetOutdatedLoader();
  EXPECT_EQ(Repairs(), Lines());
  EXPECT_EQ(DiaryOf({"RegEnumValueW", "RegCloseKey"}), Lines());
}

TEST_F(InstallRepair, AnEmptyProductsKeyEndsTheWalkAtOnce)
{
  SetOutdatedLoader();
  Registry().AddKey(HKEY_LOCAL_MACHINE, RegistryView::Wow32, ProductsKey);
  EXPECT_EQ(Repairs(), Lines());
  EXPECT_EQ(DiaryOf({"RegEnumValueW"}).size(), 1u);
}

TEST_F(InstallRepair, ProductsAreReadFromThe32BitViewOfTheMachineAlone)
{
  SetOutdatedLoader();
  Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Native, ProductsKey, FirstProduct, "x");
  Registry().SetText(HKEY_CURRENT_USER, RegistryView::Native, ProductsKey, SecondProduct, "x");
  EXPECT_EQ(Repairs(), Lines());
}

TEST_F(InstallRepair, EachProductIsRepairedOnceInTheOrderOfItsIndex)
{
  SetOutdatedLoader();
  for (const char* code : {ThirdProduct, FirstProduct, SecondProduct})
    AddProduct(code);
  EXPECT_EQ(Repairs(), (Lines{RepairLine(ThirdProduct, "0x104"), RepairLine(FirstProduct, "0x104"),
                              RepairLine(SecondProduct, "0x104")}));
}

TEST_F(InstallRepair, TheSizesAreSetAnewBeforeEachProduct)
{
  SetOutdatedLoader();
  ListProduct("short", {1});
  ListProduct(std::string(100, 'n'), Bytes(600, 1));
  AddProduct(FirstProduct);
  RepairInstallation();
  const std::string sizes = ", name 512, type 1, data 1024) = ";
  EXPECT_EQ(DiaryOf({"RegEnumValueW"}),
            (Lines{"RegEnumValueW(#1, 0" + sizes + "0 \"short\"",
                   "RegEnumValueW(#1, 1" + sizes + "0 \"" + std::string(100, 'n') + "\"",
                   "RegEnumValueW(#1, 2" + sizes + "0 \"" + FirstProduct + "\"",
                   "RegEnumValueW(#1, 3" + sizes + "259"}));
}

TEST_F(InstallRepair, AProductThatTheInstallerDoesNotKnowDoesNotStopTheOthers)
{
  SetOutdatedLoader();
  ListProduct("{unknown}", {});
  AddProduct(SecondProduct);
  EXPECT_EQ(Repairs(),
            (Lines{RepairLine("{unknown}", "0x104", 1605), RepairLine(SecondProduct, "0x104")}));
}

TEST_F(InstallRepair, AFailedRepairDoesNotStopTheOthers)
{
  SetOutdatedLoader();
  AddProduct(FirstProduct);
  AddProduct(SecondProduct);
  FailCall("MsiReinstallProductW", 1, ERROR_INSTALL_FAILURE);
  EXPECT_EQ(Repairs(),
            (Lines{RepairLine(FirstProduct, "0x104", 1603), RepairLine(SecondProduct, "0x104")}));
}

TEST_F(InstallRepair, TheWalkEndsAtTheFirstError)
{
  SetOutdatedLoader();
  AddProduct(FirstProduct);
  AddProduct(SecondProduct);
  AddProduct(ThirdProduct);
  FailCall("RegEnumValueW", 2, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Repairs(), Lines{RepairLine(FirstProduct, "0x104")});
  EXPECT_EQ(Diary().back(), "RegCloseKey(#1) = 0");
}

TEST_F(InstallRepair, TheDefaultValueIsAProductToo)
{
  SetOutdatedLoader();
  ListProduct("", {});
  AddProduct(SecondProduct);
  EXPECT_EQ(Repairs(), (Lines{RepairLine("", "0x104", 1605), RepairLine(SecondProduct, "0x104")}));
}

TEST_F(InstallRepair, TheDataOfAProductPlaysNoPart)
{
  SetOutdatedLoader();
  Installer().AddProduct(FirstProduct);
  for (const Bytes& data : {Bytes(), Bytes(1, 0xFF), Bytes(1024, 0xFF), TextBytes("odd text")}) {
    ClearDiary();
    ListProduct(FirstProduct, data);
    EXPECT_EQ(Repairs(), Lines{RepairLine(FirstProduct, "0x104")}) << data.size() << " bytes";
  }
}

TEST_F(InstallRepair, DataBeyondItsBufferEndsTheWalk)
{
  SetOutdatedLoader();
  ListProduct(FirstProduct, Bytes(1025, 'x'));
  AddProduct(SecondProduct);
  EXPECT_EQ(Repairs(), Lines());
}

TEST_F(InstallRepair, ANameThatFillsItsBufferIsAProduct)
{
  SetOutdatedLoader();
  const std::string name(511, 'n');
  AddProduct(name);
  AddProduct(SecondProduct);
  EXPECT_EQ(Repairs(), (Lines{RepairLine(name, "0x104"), RepairLine(SecondProduct, "0x104")}));
}

TEST_F(InstallRepair, ANameBeyondItsBufferEndsTheWalk)
{
  SetOutdatedLoader();
  AddProduct(FirstProduct);
  AddProduct(std::string(512, 'n'));
  AddProduct(ThirdProduct);
  EXPECT_EQ(Repairs(), Lines{RepairLine(FirstProduct, "0x104")});
}

TEST_F(InstallRepair, WithoutItsClassKeyTheServerIsNotRegistered)
{
  EXPECT_FALSE(IsComServerRegistered());
  EXPECT_EQ(DiaryOf({"RegQueryValueExW", "RegCloseKey"}), Lines());
}

TEST_F(InstallRepair, WithoutAPathTheServerIsNotRegistered)
{
  Registry().SetText(HKEY_CLASSES_ROOT, RegistryView::Wow32, ServerKey, "ThreadingModel",
                     "Apartment or something longer");
  EXPECT_FALSE(IsComServerRegistered());
}

TEST_F(InstallRepair, TheClassIsReadFromThe32BitViewAlone)
{
  Registry().SetText(HKEY_CLASSES_ROOT, RegistryView::Native, ServerKey, "",
                     "C:\\Server\\Forge.dll");
  EXPECT_FALSE(IsComServerRegistered());
}

TEST_F(InstallRepair, AServerPathOfMoreThan15CharactersIsARegistration)
{
  for (const size_t length : {0u, 1u, 14u, 15u, 16u, 17u, 260u, 511u}) {
    RegisterServer(std::string(length, 'x'));
    EXPECT_EQ(IsComServerRegistered(), length > 15) << length;
  }
}

TEST_F(InstallRepair, AServerPathOf15CharactersStartsNoRepairAndOneOf16Does)
{
  AddProduct(FirstProduct);
  RegisterServer("C:\\Serv\\For.dll");
  EXPECT_EQ(Repairs(), Lines());
  RegisterServer("C:\\Serv\\Forg.dll");
  EXPECT_EQ(Repairs(), Lines{RepairLine(FirstProduct, "0x100")});
}

TEST_F(InstallRepair, AServerPathIsMeasuredHoweverItIsStored)
{
  struct Stored
  {
    Bytes bytes;
    bool registered;
  };
  const std::string text15(15, 'x');
  Bytes hiddenTail = TextBytesWithTerminator(text15);
  hiddenTail.insert(hiddenTail.end(), 40, 'y');
  Bytes odd = TextBytes(text15.substr(1));
  odd.push_back('y');
  const Stored paths[] = {{TextBytes(text15), false},
                          {TextBytes(text15 + "y"), true},
                          {hiddenTail, false},
                          {odd, false},
                          {{}, false},
                          {TextBytes(std::string(512, 'x')), true},
                          {TextBytes(std::string(513, 'x')), false}};
  for (const Stored& path : paths) {
    SetRawServer(REG_SZ, path.bytes);
    EXPECT_EQ(IsComServerRegistered(), path.registered) << path.bytes.size() << " bytes";
  }
}

TEST_F(InstallRepair, TheTypeOfAServerPathIsNotLookedAt)
{
  SetRawServer(REG_EXPAND_SZ, TextBytesWithTerminator("%Server%\\Forge.dll"));
  EXPECT_TRUE(IsComServerRegistered());
}

TEST_F(InstallRepair, AServerPathThatCanNotBeReadIsNoRegistration)
{
  RegisterServer("C:\\Server\\Forge.dll");
  FailCall("RegQueryValueExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_FALSE(IsComServerRegistered());
  EXPECT_EQ(Diary().back(), "RegCloseKey(#1) = 0");
}

TEST_F(InstallRepair, ALoaderIsOutdatedIfItsFirstNumberIsLower)
{
  struct Pair
  {
    const char* launcher;
    const char* loader;
    bool outdated;
  };
  const Pair pairs[] = {{"2010.1.0.0", "2009.9.9.9", true},
                        {"2010.1.0.0", "2010.1.0.0", false},
                        {"9.1.2", "9.9.9", false},
                        {"9.9.9", "9.1.2", false},
                        {"9.0.0.0", "10.0.0.0", false},
                        {"10.0.0.0", "9.0.0.0", true},
                        {"2010", "2009", true},
                        {"2010.1", "1999", true},
                        {"2010, 1, 0, 0", "2009, 1, 0, 0", true}};
  for (const Pair& pair : pairs) {
    EXPECT_EQ(IsOutdated(pair.launcher, pair.loader), pair.outdated)
        << pair.launcher << " and " << pair.loader;
  }
}

TEST_F(InstallRepair, VersionsCompareWithoutASign)
{
  EXPECT_FALSE(IsOutdated("5.0", "-1.0"));
  EXPECT_TRUE(IsOutdated("-1.0", "5.0"));
}

TEST_F(InstallRepair, DotsInFrontOfAVersionArePassedOver)
{
  EXPECT_TRUE(IsOutdated("..10.0", "9.0"));
  EXPECT_TRUE(IsOutdated("10.0", ".9.0"));
  EXPECT_FALSE(IsOutdated("9.0", ".10.0"));
}

TEST_F(InstallRepair, AVersionOfZeroIsNone)
{
  for (const char* none : {"", "0.9", "beta.1", "...", "-"}) {
    EXPECT_FALSE(IsOutdated("10.0", none)) << none;
    EXPECT_FALSE(IsOutdated(none, "9.0")) << none;
  }
}

TEST_F(InstallRepair, WithoutAVersionOfTheLauncherTheLoaderIsNotOutdated)
{
  Versions().SetFileVersion(LoaderFile, "9.0");
  EXPECT_FALSE(IsLoaderOutdated());
  EXPECT_EQ(DiaryOf({"GetFileVersionInfoA"}),
            Lines{"GetFileVersionInfoA(\"" + std::string(LoaderFile) + "\", 0, 100) = 1"});
  Versions().SetWithoutFileVersion(LauncherFile);
  EXPECT_FALSE(IsLoaderOutdated());
}

TEST_F(InstallRepair, WithoutAVersionTheLoaderIsNotOutdated)
{
  Versions().SetFileVersion(LauncherFile, "10.0");
  EXPECT_FALSE(IsLoaderOutdated());
  EXPECT_EQ(DiaryOf({"GetFileVersionInfoA"}).size(), 1u);
  Versions().SetWithoutFileVersion(LoaderFile);
  EXPECT_FALSE(IsLoaderOutdated());
}

TEST_F(InstallRepair, TheReferenceIsTheOneLoaderOfThe32BitFolder)
{
  Versions().SetFileVersion(LauncherFile, "10.0");
  Versions().SetFileVersion("D:\\Common\\Norvane\\QuillStartupLoader8x86.arx", "9.0");
  ShellFolders().SetFolder(CommonFiles32, "D:\\Common");
  EXPECT_TRUE(IsLoaderOutdated());
}

TEST_F(InstallRepair, TheVersionOfTheLauncherIsThatOfTheRunningFile)
{
  Processes().SetModulePath("E:\\Forge\\Start \xC3\x84.exe");
  Versions().SetFileVersion("E:\\Forge\\Start \xC3\x84.exe", "10.0");
  Versions().SetFileVersion(LoaderFile, "9.0");
  EXPECT_TRUE(IsLoaderOutdated());
}

TEST_F(InstallRepair, AnyFailureInReadingAVersionMeansNotOutdated)
{
  struct Failure
  {
    const char* function;
    int n;
  };
  const Failure failures[] = {{"GetModuleFileNameExA", 1},    {"SHGetSpecialFolderPathA", 1},
                              {"GetFileVersionInfoSizeA", 1}, {"GetFileVersionInfoA", 1},
                              {"VerQueryValueA", 1},          {"malloc", 1},
                              {"GetFileVersionInfoA", 2},     {"GetFileVersionInfoSizeA", 2},
                              {"VerQueryValueA", 2},          {"malloc", 2}};
  SetOutdatedLoader();
  for (const Failure& failure : failures) {
    FailCall(failure.function, failure.n, ERROR_FILE_INVALID);
    EXPECT_FALSE(IsLoaderOutdated()) << failure.function << " " << failure.n;
    EXPECT_EQ(TakeMisuses(), Lines());
  }
  EXPECT_TRUE(IsLoaderOutdated());
}

TEST_F(InstallRepair, WithoutMemoryForTheLoadersVersionItIsNotRead)
{
  SetOutdatedLoader();
  FailCall("malloc", 2);
  EXPECT_FALSE(IsLoaderOutdated());
  EXPECT_EQ(DiaryOf({"GetFileVersionInfoA"}).size(), 1u);
}

TEST_F(InstallRepair, AFailedCloseOfTheProcessIsNotLookedAt)
{
  SetOutdatedLoader();
  FailCall("CloseHandle", 1, ERROR_INVALID_HANDLE);
  EXPECT_TRUE(IsLoaderOutdated());
}

TEST_F(InstallRepair, AVersionWithoutAnEndIsReadToTheEndOfItsBlock)
{
  Versions().SetUnterminatedVersion(LauncherFile, "10");
  Versions().SetUnterminatedVersion(LoaderFile, "9");
  EXPECT_TRUE(IsLoaderOutdated());
  Versions().SetUnterminatedVersion(LoaderFile, "");
  EXPECT_FALSE(IsLoaderOutdated());
}

TEST_F(InstallRepair, AVersionInALargeBlockIsRead)
{
  SetVersions("10." + std::string(5000, '1'), "9." + std::string(5000, '1'));
  EXPECT_TRUE(IsLoaderOutdated());
}

TEST_F(InstallRepair, AnOverlongPathOfTheLauncherHasNoVersion)
{
  SetOutdatedLoader();
  for (const size_t length : {259u, 260u, 261u, 1000u}) {
    Processes().SetModulePath(std::string(length, 'x'));
    EXPECT_FALSE(IsLoaderOutdated()) << length;
  }
}

TEST_F(InstallRepairDeathTest, ALoadersPathBeyond260CharactersEndsTheProcess)
{
  // The file's part has 35 characters.
  const std::string folder(224, 'x');
  ShellFolders().SetFolder(CommonFiles32, folder);
  Versions().SetFileVersion(LauncherFile, "10.0");
  Versions().SetFileVersion(folder + "\\Norvane\\QuillStartupLoader8x86.arx", "9.0");
  EXPECT_TRUE(IsLoaderOutdated());
  ShellFolders().SetFolder(CommonFiles32, folder + "x");
  EXPECT_EXIT(RepairInstallation(), testing::ExitedWithCode(3), "^TerminateProcess 0xC0000417\n$");
}

TEST_F(InstallRepairDeathTest, AFailedCheckedCallEndsTheProcess)
{
  SetOutdatedLoader();
  EXPECT_EXIT((FailCall("strcat_s", 1, ERANGE), RepairInstallation()), testing::ExitedWithCode(3),
              "^TerminateProcess 0xC0000417\n$");
}
