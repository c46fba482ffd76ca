#include "settings/EnvironmentSettings.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/unit/settings/SettingsMachine.h"

#include <gtest/gtest.h>

namespace {

class EnvironmentKeyText : public PlatformTest
{
};

class BinPath : public PlatformTest
{
};

class DataPath : public PlatformTest
{
};

class RegisteredConnection : public PlatformTest
{
};

class MachineString : public PlatformTest
{
};

class TrailingBackslash : public PlatformTest
{
};

}  // namespace

TEST_F(EnvironmentKeyText, IsGivenWithoutALookAtTheRegistry)
{
  EXPECT_EQ("Software\\Norvane\\Kestrelforge\\2010\\Environment", Utf8(GetEnvironmentKey().Text()));
  EXPECT_FALSE(Registry().HasKey(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentPath));
  EXPECT_TRUE(Diary().empty());
}

TEST_F(BinPath, IsReadFromTheMachineAlone)
{
  SetMachine("BinPath", "C:\\Program Files\\Kestrelforge");
  SetUser("BinPath", "C:\\User");
  EXPECT_EQ("C:\\Program Files\\Kestrelforge", Utf8(GetBinPath(false).Text()));
  const std::vector<std::string> expected = {OpenLine("HKLM", EnvironmentPath, "0x20019", "0 #1"),
                                             QueryLine("#1", "BinPath", "0"),
                                             "RegCloseKey(#1) = 0"};
  EXPECT_EQ(expected, Diary());
}

TEST_F(BinPath, OfTheUserIsNotFound)
{
  SetUser("BinPath", "C:\\User");
  EXPECT_EQ("", Utf8(GetBinPath(false).Text()));
  EXPECT_EQ("", Utf8(GetBinPath(true).Text()));
  const std::vector<std::string> expected = {
      OpenLine("HKLM", EnvironmentPath, "0x20019", "2"),
      OpenLine("HKLM", EnvironmentPath, "0x20219", "2"),
  };
  EXPECT_EQ(expected, Diary());
}

TEST_F(BinPath, WithTheFlagIsReadFromThe32BitView)
{
  SetMachine("BinPath", "C:\\Native");
  SetMachine32("BinPath", "C:\\Narrow");
  EXPECT_EQ("C:\\Narrow", Utf8(GetBinPath(true).Text()));
  const std::vector<std::string> expected = {OpenLine("HKLM", EnvironmentPath, "0x20219", "0 #1"),
                                             QueryLine("#1", "BinPath", "0"),
                                             "RegCloseKey(#1) = 0"};
  EXPECT_EQ(expected, Diary());
}

TEST_F(BinPath, OfTheOtherViewIsNotTaken)
{
  SetMachine32("BinPath", "C:\\Narrow");
  EXPECT_EQ("", Utf8(GetBinPath(false).Text()));
  Registry().RemoveKey(HKEY_LOCAL_MACHINE, RegistryView::Wow32, "Software\\Norvane");
  SetMachine("BinPath", "C:\\Native");
  EXPECT_EQ("", Utf8(GetBinPath(true).Text()));
}

TEST_F(BinPath, WithoutTheKeyIsEmptyAndNothingIsClosed)
{
  EXPECT_EQ(QulStringEmptyRepr, GetBinPath(false).repr);
  EXPECT_EQ(std::vector<std::string>{OpenLine("HKLM", EnvironmentPath, "0x20019", "2")}, Diary());
}

TEST_F(BinPath, WithoutTheValueIsEmptyAndTheKeyIsClosed)
{
  SetMachine("Other", "C:\\Other");
  EXPECT_EQ(QulStringEmptyRepr, GetBinPath(false).repr);
  const std::vector<std::string> expected = {OpenLine("HKLM", EnvironmentPath, "0x20019", "0 #1"),
                                             QueryLine("#1", "BinPath", "2"),
                                             "RegCloseKey(#1) = 0"};
  EXPECT_EQ(expected, Diary());
}

TEST_F(BinPath, OfAKeyThatMayNotBeReadIsEmpty)
{
  SetMachine("BinPath", "C:\\Native");
  Registry().DenyAccess(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentPath, KEY_READ);
  EXPECT_EQ("", Utf8(GetBinPath(false).Text()));
  EXPECT_EQ(std::vector<std::string>{OpenLine("HKLM", EnvironmentPath, "0x20019", "5")}, Diary());
}

TEST_F(BinPath, IsReadAnewAtEachCall)
{
  SetMachine("BinPath", "C:\\One");
  EXPECT_EQ("C:\\One", Utf8(GetBinPath(false).Text()));
  SetMachine("BinPath", "C:\\Two");
  EXPECT_EQ("C:\\Two", Utf8(GetBinPath(false).Text()));
  Registry().RemoveValue(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentPath, "BinPath");
  EXPECT_EQ("", Utf8(GetBinPath(false).Text()));
  EXPECT_EQ(0, Registry().OpenHandleCount());
}

TEST_F(BinPath, IsTakenEvenIfTheKeyCannotBeClosed)
{
  SetMachine("BinPath", "C:\\Native");
  FailCall("RegCloseKey", 1, ERROR_INVALID_HANDLE);
  EXPECT_EQ("C:\\Native", Utf8(GetBinPath(false).Text()));
}

TEST_F(DataPath, OfTheUserWinsOverThatOfTheMachine)
{
  SetUser("DataPath", "C:\\User");
  SetMachine("DataPath", "C:\\Machine");
  EXPECT_EQ("C:\\User", Utf8(GetDataPath().Text()));
  const std::vector<std::string> expected = {OpenLine("HKCU", EnvironmentPath, "0x20019", "0 #1"),
                                             QueryLine("#1", "DataPath", "0"),
                                             "RegCloseKey(#1) = 0"};
  EXPECT_EQ(expected, Diary());
}

TEST_F(DataPath, IsThatOfTheMachineIfTheUserHasNoKey)
{
  SetMachine("DataPath", "C:\\Machine");
  EXPECT_EQ("C:\\Machine", Utf8(GetDataPath().Text()));
  const std::vector<std::string> expected = {OpenLine("HKCU", EnvironmentPath, "0x20019", "2"),
                                             OpenLine("HKLM", EnvironmentPath, "0x20019", "0 #1"),
                                             QueryLine("#1", "DataPath", "0"),
                                             "RegCloseKey(#1) = 0"};
  EXPECT_EQ(expected, Diary());
}

TEST_F(DataPath, IsThatOfTheMachineIfTheUsersKeyLacksTheValue)
{
  SetUser("Other", "C:\\Other");
  SetMachine("DataPath", "C:\\Machine");
  EXPECT_EQ("C:\\Machine", Utf8(GetDataPath().Text()));
  const std::vector<std::string> expected = {OpenLine("HKCU", EnvironmentPath, "0x20019", "0 #1"),
                                             QueryLine("#1", "DataPath", "2"),
                                             "RegCloseKey(#1) = 0",
                                             OpenLine("HKLM", EnvironmentPath, "0x20019", "0 #2"),
                                             QueryLine("#2", "DataPath", "0"),
                                             "RegCloseKey(#2) = 0"};
  EXPECT_EQ(expected, Diary());
}

TEST_F(DataPath, OfTheUserIsPassedOverIfItCannotBeOpenedOrQueried)
{
  SetUser("DataPath", "C:\\User");
  SetMachine("DataPath", "C:\\Machine");
  FailCall("RegOpenKeyExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ("C:\\Machine", Utf8(GetDataPath().Text()));
  FailCall("RegQueryValueExW", 1, ERROR_MORE_DATA);
  EXPECT_EQ("C:\\Machine", Utf8(GetDataPath().Text()));
  EXPECT_EQ(0, Registry().OpenHandleCount());
}

TEST_F(DataPath, ThatIsThereButEmptyHidesTheMachines)
{
  SetUser("DataPath", "");
  SetMachine("DataPath", "C:\\Machine");
  EXPECT_EQ(QulStringEmptyRepr, GetDataPath().repr);
  EXPECT_EQ(1U, DiaryOf({"RegOpenKeyExW"}).size());
}

TEST_F(DataPath, OfNoBytesCountsAsFoundToo)
{
  Registry().SetRaw(HKEY_CURRENT_USER, RegistryView::Native, EnvironmentPath, "DataPath", REG_SZ,
                    {});
  SetMachine("DataPath", "C:\\Machine");
  EXPECT_EQ("", Utf8(GetDataPath().Text()));
}

TEST_F(DataPath, WithoutAnyValueIsEmpty)
{
  EXPECT_EQ(QulStringEmptyRepr, GetDataPath().repr);
  const std::vector<std::string> expected = {OpenLine("HKCU", EnvironmentPath, "0x20019", "2"),
                                             OpenLine("HKLM", EnvironmentPath, "0x20019", "2")};
  EXPECT_EQ(expected, Diary());
}

TEST_F(DataPath, OfThe32BitViewIsNotTaken)
{
  SetMachine32("DataPath", "C:\\Narrow");
  EXPECT_EQ("", Utf8(GetDataPath().Text()));
  SetMachine("DataPath", "C:\\Native");
  EXPECT_EQ("C:\\Native", Utf8(GetDataPath().Text()));
}

TEST_F(TrailingBackslash, OneGoesFromTheUsersPathAndTwoFromTheMachines)
{
  const struct
  {
    const char* value;
    const char* machine;
    const char* user;
  } cases[] = {
      {"C:\\Data", "C:\\Data", "C:\\Data"},
      {"C:\\Data\\", "C:\\Data", "C:\\Data"},
      {"C:\\Data\\\\", "C:\\Data", "C:\\Data\\"},
      {"C:\\Data\\\\\\", "C:\\Data\\", "C:\\Data\\\\"},
      {"C:\\", "C:", "C:"},
      {"\\", "\\", "\\"},
      {"\\\\", "\\", "\\"},
      {"\\\\\\", "\\", "\\\\"},
      {"a\\", "a", "a"},
      {"C:/Data/", "C:/Data/", "C:/Data/"},
      {"C:\\Data\\ ", "C:\\Data\\ ", "C:\\Data\\ "},
      {"", "", ""},
  };
  for (const auto& c : cases) {
    ResetPlatform();
    SetMachine("BinPath", c.value);
    SetMachine32("BinPath", c.value);
    SetMachine("DataPath", c.value);
    EXPECT_EQ(c.machine, Utf8(GetBinPath(false).Text())) << c.value;
    EXPECT_EQ(c.machine, Utf8(GetBinPath(true).Text())) << c.value;
    EXPECT_EQ(c.machine, Utf8(GetDataPath().Text())) << c.value;
    SetUser("DataPath", c.value);
    EXPECT_EQ(c.user, Utf8(GetDataPath().Text())) << c.value;
  }
}

TEST_F(MachineString, GivesOneAndTheTextWithoutOneTrailingBackslash)
{
  SetMachine("BinPath", "C:\\Data\\\\");
  QulString result(L"old");
  EXPECT_EQ(1, ReadMachineRegistryString(GetEnvironmentKey(), L"BinPath", result, 0, false));
  EXPECT_EQ("C:\\Data\\", Utf8(result.Text()));
}

TEST_F(MachineString, AnEmptyValueWasReadToo)
{
  SetMachine("BinPath", "");
  QulString result(L"old");
  EXPECT_EQ(1, ReadMachineRegistryString(GetEnvironmentKey(), L"BinPath", result, 0, false));
  EXPECT_EQ(QulStringEmptyRepr, result.repr);
}

TEST_F(MachineString, ThatIsNotReadLeavesTheResultButForItsTrailingBackslash)
{
  for (const bool hasKey : {false, true}) {
    if (hasKey)
      SetMachine("Other", "C:\\Other");
    QulString stripped(L"C:\\old\\");
    QulString kept(L"C:\\old");
    EXPECT_EQ(0, ReadMachineRegistryString(GetEnvironmentKey(), L"BinPath", stripped, 0, false));
    EXPECT_EQ(0, ReadMachineRegistryString(GetEnvironmentKey(), L"BinPath", kept, 0, false));
    EXPECT_EQ("C:\\old", Utf8(stripped.Text()));
    EXPECT_EQ("C:\\old", Utf8(kept.Text()));
  }
  EXPECT_EQ(0, Registry().OpenHandleCount());
}

TEST_F(MachineString, IsReadBelowTheGivenKeyInTheGivenView)
{
  Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Wow32, "Software\\X", "V", "text");
  QulString result;
  EXPECT_EQ(1, ReadMachineRegistryString(L"Software\\X", L"V", result, 0, true));
  EXPECT_EQ(0, ReadMachineRegistryString(L"Software\\X", L"V", result, 0, false));
  const std::vector<std::string> expected = {OpenLine("HKLM", "Software\\X", "0x20219", "0 #1"),
                                             QueryLine("#1", "V", "0"), "RegCloseKey(#1) = 0",
                                             OpenLine("HKLM", "Software\\X", "0x20019", "2")};
  EXPECT_EQ(expected, Diary());
  EXPECT_EQ("text", Utf8(result.Text()));
}

TEST_F(MachineString, TheFourthArgumentHasNoEffect)
{
  SetMachine("BinPath", "C:\\Data");
  for (const int argument : {0, 1, -1, 32}) {
    QulString result;
    ClearDiary();
    EXPECT_EQ(1,
              ReadMachineRegistryString(GetEnvironmentKey(), L"BinPath", result, argument, false));
    EXPECT_EQ("C:\\Data", Utf8(result.Text()));
    EXPECT_EQ(3U, Diary().size());
  }
}

TEST_F(RegisteredConnection, OfTheUserWinsOverThatOfTheMachine)
{
  SetUserConnection("Kernel", "DSN=user");
  SetMachineConnection("Kernel", "DSN=machine");
  EXPECT_EQ("DSN=user", Utf8(GetRegisteredConnection(L"Kernel").Text()));
  const std::vector<std::string> expected = {OpenLine("HKCU", ConnectionsPath, "0x20019", "0 #1"),
                                             QueryLine("#1", "Kernel", "0"), "RegCloseKey(#1) = 0"};
  EXPECT_EQ(expected, Diary());
}

TEST_F(RegisteredConnection, IsThatOfTheMachineIfTheUserHasNoKey)
{
  SetMachineConnection("Kernel", "DSN=machine");
  EXPECT_EQ("DSN=machine", Utf8(GetRegisteredConnection(L"Kernel").Text()));
  const std::vector<std::string> expected = {OpenLine("HKCU", ConnectionsPath, "0x20019", "2"),
                                             OpenLine("HKLM", ConnectionsPath, "0x20019", "0 #1"),
                                             QueryLine("#1", "Kernel", "0"), "RegCloseKey(#1) = 0"};
  EXPECT_EQ(expected, Diary());
}

TEST_F(RegisteredConnection, IsThatOfTheMachineIfTheUsersKeyLacksTheValue)
{
  SetUserConnection("Other", "DSN=other");
  SetMachineConnection("Kernel", "DSN=machine");
  EXPECT_EQ("DSN=machine", Utf8(GetRegisteredConnection(L"Kernel").Text()));
  const std::vector<std::string> expected = {OpenLine("HKCU", ConnectionsPath, "0x20019", "0 #1"),
                                             QueryLine("#1", "Kernel", "2"),
                                             "RegCloseKey(#1) = 0",
                                             OpenLine("HKLM", ConnectionsPath, "0x20019", "0 #2"),
                                             QueryLine("#2", "Kernel", "0"),
                                             "RegCloseKey(#2) = 0"};
  EXPECT_EQ(expected, Diary());
}

TEST_F(RegisteredConnection, ThatIsThereButEmptyHidesTheMachines)
{
  SetUserConnection("Kernel", "");
  SetMachineConnection("Kernel", "DSN=machine");
  EXPECT_EQ("", Utf8(GetRegisteredConnection(L"Kernel").Text()));
  EXPECT_EQ(1U, DiaryOf({"RegOpenKeyExW"}).size());
}

TEST_F(RegisteredConnection, EndsAsItLikes)
{
  SetUserConnection("Kernel", "DBQ=C:\\Data\\\\");
  SetMachineConnection("Model", "DBQ=C:\\Data\\");
  EXPECT_EQ("DBQ=C:\\Data\\\\", Utf8(GetRegisteredConnection(L"Kernel").Text()));
  EXPECT_EQ("DBQ=C:\\Data\\", Utf8(GetRegisteredConnection(L"Model").Text()));
}

TEST_F(RegisteredConnection, WithoutAnyValueIsEmpty)
{
  EXPECT_EQ(QulStringEmptyRepr, GetRegisteredConnection(L"Kernel").repr);
  SetUserConnection("Other", "DSN=other");
  SetMachineConnection("Other", "DSN=other");
  EXPECT_EQ(QulStringEmptyRepr, GetRegisteredConnection(L"Kernel").repr);
  EXPECT_EQ(0, Registry().OpenHandleCount());
}

TEST_F(RegisteredConnection, OfTheUserIsPassedOverIfItCannotBeOpenedOrQueried)
{
  SetUserConnection("Kernel", "DSN=user");
  SetMachineConnection("Kernel", "DSN=machine");
  FailCall("RegOpenKeyExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ("DSN=machine", Utf8(GetRegisteredConnection(L"Kernel").Text()));
  FailCall("RegQueryValueExW", 1, ERROR_MORE_DATA);
  EXPECT_EQ("DSN=machine", Utf8(GetRegisteredConnection(L"Kernel").Text()));
  EXPECT_EQ(0, Registry().OpenHandleCount());
}

TEST_F(RegisteredConnection, OfTheMachineIsEmptyIfItCannotBeOpenedOrQueried)
{
  SetMachineConnection("Kernel", "DSN=machine");
  FailCall("RegOpenKeyExW", 2, ERROR_ACCESS_DENIED);
  EXPECT_EQ("", Utf8(GetRegisteredConnection(L"Kernel").Text()));
  FailCall("RegQueryValueExW", 1, ERROR_MORE_DATA);
  EXPECT_EQ("", Utf8(GetRegisteredConnection(L"Kernel").Text()));
  EXPECT_EQ(0, Registry().OpenHandleCount());
}

TEST_F(RegisteredConnection, OfThe32BitViewIsNotTaken)
{
  Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Wow32, ConnectionsPath, "Kernel", "DSN=x");
  EXPECT_EQ("", Utf8(GetRegisteredConnection(L"Kernel").Text()));
}

TEST_F(RegisteredConnection, IsTakenEvenIfTheKeyCannotBeClosed)
{
  SetUserConnection("Kernel", "DSN=user");
  FailCall("RegCloseKey", 1, ERROR_INVALID_HANDLE);
  EXPECT_EQ("DSN=user", Utf8(GetRegisteredConnection(L"Kernel").Text()));
}
