// The pieces of a registration: one value, and the file names.
#include "host/DemandLoadRegistration.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/Text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

class DemandLoadValue : public PlatformTest
{
protected:
  using Lines = std::vector<std::string>;

  static void AddKey(const std::string& path)
  {
    Registry().AddKey(HKEY_CURRENT_USER, RegistryView::Native, path);
  }
  static RegistryValue Value(const std::string& path, const std::string& name)
  {
    return Registry().Value(HKEY_CURRENT_USER, RegistryView::Native, path, name);
  }
};

class LoaderFileNames : public PlatformTest
{
};

using LoaderFileNamesDeathTest = LoaderFileNames;

}  // namespace

TEST_F(DemandLoadValue, AStringIsWrittenWithoutItsTerminator)
{
  AddKey("Software\\K");
  EXPECT_EQ(SetRegistryString(L"Software\\K", L"Name", L"Text"), 1);
  EXPECT_EQ(SetRegistryString(L"Software\\K", L"Empty", L""), 1);
  EXPECT_EQ(Value("Software\\K", "Name").type, REG_SZ);
  EXPECT_EQ(Value("Software\\K", "Name").bytes, TextBytes("Text"));
  EXPECT_TRUE(Value("Software\\K", "Empty").exists);
  EXPECT_EQ(Value("Software\\K", "Empty").bytes, Bytes());
}

TEST_F(DemandLoadValue, ANumberIsWrittenAsLoadCtrlsWhateverItsName)
{
  EXPECT_EQ(SetLoadCtrls(L"Software\\K", L"Other", 0x01020304), 1);
  EXPECT_EQ(Registry().ValueNames(HKEY_CURRENT_USER, RegistryView::Native, "Software\\K"),
            Lines{"LOADCTRLS"});
  EXPECT_EQ(Value("Software\\K", "LOADCTRLS").type, REG_DWORD);
  EXPECT_EQ(Value("Software\\K", "LOADCTRLS").bytes, (Bytes{4, 3, 2, 1}));
}

TEST_F(DemandLoadValue, AKeyThatCanNotBeOpenedIsCreated)
{
  AddKey("Software\\K");
  FailCall("RegOpenKeyExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(SetRegistryString(L"Software\\K", L"Name", L"Text"), 1);
  EXPECT_EQ(
      Diary(),
      (Lines{"RegOpenKeyExW(HKCU, \"Software\\K\", 0, 0x20006) = 5",
             "RegCreateKeyExW(HKCU, \"Software\\K\", 0, class null, 0, 0xF003F, null, null)"
             " = 0 #1",
             "RegSetValueExW(#1, \"Name\", 0, REG_SZ, \"Text\", 8) = 0", "RegCloseKey(#1) = 0"}));
}

TEST_F(DemandLoadValue, WithoutAKeyNothingIsWrittenOrClosed)
{
  AddKey("Software\\K");
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, "Software\\K", KEY_SET_VALUE);
  EXPECT_EQ(SetRegistryString(L"Software\\K", L"Name", L"Text"), 0);
  EXPECT_EQ(SetLoadCtrls(L"Software\\K", L"LOADCTRLS", 2), 0);
  EXPECT_EQ(DiaryOf({"RegCreateKeyExW"}).size(), 2u);
  EXPECT_EQ(DiaryOf({"RegSetValueExW", "RegCloseKey"}), Lines());
}

TEST_F(DemandLoadValue, AFailedWriteIsToldAndItsKeyClosed)
{
  FailCall("RegSetValueExW", 1, ERROR_ACCESS_DENIED);
  FailCall("RegSetValueExW", 2, ERROR_ACCESS_DENIED);
  EXPECT_EQ(SetRegistryString(L"Software\\K", L"Name", L"Text"), 0);
  EXPECT_EQ(SetLoadCtrls(L"Software\\K", L"LOADCTRLS", 2), 0);
  EXPECT_EQ(DiaryOf({"RegCloseKey"}).size(), 2u);
  EXPECT_EQ(Registry().OpenHandleCount(), 0);
}

TEST_F(LoaderFileNames, FileNamesAreComposedIntoBuffersOfTheirExactSizes)
{
  const std::string folder = "C:\\Program Files\\Common Files\\Norvane\\";
  // Of 38 characters, and 26, 26 and 34 for the names; and the terminators. The folder's call may
  // write more than that, so the first buffer has room behind.
  wchar_t startup[260];
  wchar_t demand[65];
  wchar_t designer[73];
  for (wchar_t* buffer : {startup, demand, designer})
    buffer[0] = L'x';
  EXPECT_EQ(ComposeLoaderFileNames(3, startup, 65, demand, 65, designer, 73, true), 1);
  EXPECT_EQ(Utf8(startup), folder + "QuillStartupLoader9x64.arx");
  EXPECT_EQ(Utf8(demand), folder + "KFDemandLoadHelper9x64.arx");
  EXPECT_EQ(Utf8(designer), folder + "ProfDesignDemandLoadHelper9x64.arx");
}

TEST_F(LoaderFileNamesDeathTest, AFileNameBeyondItsBufferEndsTheProcess)
{
  struct Sizes
  {
    size_t startup;
    size_t demand;
    size_t designer;
  };
  for (const Sizes& sizes : {Sizes{64, 65, 73}, Sizes{65, 64, 73}, Sizes{65, 65, 72}}) {
    wchar_t startup[260];
    wchar_t demand[65];
    wchar_t designer[73];
    EXPECT_EXIT((void)ComposeLoaderFileNames(3, startup, sizes.startup, demand, sizes.demand,
                                             designer, sizes.designer, true),
                testing::ExitedWithCode(3), "^TerminateProcess 0xC0000417\n$");
  }
}
