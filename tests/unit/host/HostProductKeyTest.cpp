#include "host/HostEnumeration.h"

#include "tests/unit/host/HostMachine.h"

namespace {

struct OpenedProduct
{
  LONG status;
  std::string path;
  Lines openKeys;  // before the product key was closed
  bool isNull;
};

class HostProductKey : public HostMachine
{
protected:
  static OpenedProduct Open(bool useMachineRoot)
  {
    HKEY key = HKEY_CLASSES_ROOT;
    QulString path = L"before";
    const LONG status = OpenHostProductKey(useMachineRoot, key, path);
    const OpenedProduct opened = {status, Utf8(path), Registry().OpenKeyPaths(), key == nullptr};
    if (status == ERROR_SUCCESS)
      (void)RegCloseKey(key);
    return opened;
  }
};

class HostValue : public HostMachine
{
protected:
  std::string Read(const std::vector<unsigned char>& bytes, DWORD type = REG_SZ)
  {
    Registry().SetRaw(HKEY_CURRENT_USER, RegistryView::Native, "Software\\X", "Value", type, bytes);
    return ReadValue();
  }

  static std::string ReadValue()
  {
    HKEY key = nullptr;
    (void)RegOpenKeyExW(HKEY_CURRENT_USER, L"Software\\X", 0, KEY_QUERY_VALUE, &key);
    const QulString text = ReadHostValue(key, L"Value");
    (void)RegCloseKey(key);
    return Utf8(text);
  }
};

}  // namespace

TEST(HostKeyScopes, HostsAreRecordedPerUserInTheNativeView)
{
  const HostKeyScope scope = ScopeOfHostKeys(false);
  EXPECT_EQ(scope.root, HKEY_CURRENT_USER);
  EXPECT_EQ(scope.valueAccess, 1u);
  EXPECT_EQ(scope.enumerationAccess, 8u);
}

TEST(HostKeyScopes, Version15IsRecordedPerMachineInThe32BitView)
{
  const HostKeyScope scope = ScopeOfHostKeys(true);
  EXPECT_EQ(scope.root, HKEY_LOCAL_MACHINE);
  EXPECT_EQ(scope.valueAccess, 513u);
  EXPECT_EQ(scope.enumerationAccess, 520u);
}

// Values as hosts leave them.

TEST_F(HostValue, IsReadUpToItsFirstTerminatorOrItsEnd)
{
  EXPECT_EQ(Read(TextBytesWithTerminator("R17.1")), "R17.1");
  EXPECT_EQ(Read(TextBytes("R17.1")), "R17.1");
  EXPECT_EQ(Read(TextBytes(std::string("R17.1\0\0", 7))), "R17.1");
  EXPECT_EQ(Read(TextBytes(std::string("R17.1\0junk", 10))), "R17.1");
  EXPECT_EQ(Read(TextBytesWithTerminator("\xC3\x9C\xE2\x82\xAC")), "\xC3\x9C\xE2\x82\xAC");
}

TEST_F(HostValue, OfNoBytesOrATerminatorAloneIsEmpty)
{
  EXPECT_EQ(Read({}), "");
  EXPECT_EQ(Read(TextBytesWithTerminator("")), "");
}

TEST_F(HostValue, WithAnOddByteBehindItsTerminatorIsReadWithoutIt)
{
  std::vector<unsigned char> bytes = TextBytesWithTerminator("R17.1");
  bytes.push_back(0x41);
  EXPECT_EQ(Read(bytes), "R17.1");
}

TEST_F(HostValue, OfExactly500BytesIsReadWhole)
{
  const std::string longest(249, 'x');
  EXPECT_EQ(Read(TextBytesWithTerminator(longest)), longest);
  EXPECT_EQ(Read(TextBytes(longest + "y")), longest + "y");
}

TEST_F(HostValue, OfMoreThan500BytesReadsAsEmpty)
{
  EXPECT_EQ(Read(std::vector<unsigned char>(501, 0x20)), "");
  EXPECT_EQ(Read(TextBytesWithTerminator(std::string(250, 'x'))), "");
  EXPECT_EQ(Read(std::vector<unsigned char>(1000000, 0x41)), "");
}

TEST_F(HostValue, OfAnotherTypeIsReadAsTheBytesItHas)
{
  EXPECT_EQ(Read({0x41, 0, 0x42, 0}, REG_DWORD), "AB");
  EXPECT_EQ(Read(TextBytesWithTerminator("%X%"), REG_EXPAND_SZ), "%X%");
  EXPECT_EQ(Read(std::vector<unsigned char>(500, 0x20), REG_BINARY).size(), 250u * 3);
}

TEST_F(HostValue, ThatIsAbsentOrCannotBeReadIsEmpty)
{
  Registry().AddKey(HKEY_CURRENT_USER, RegistryView::Native, "Software\\X");
  EXPECT_EQ(ReadValue(), "");
  FailCall("RegQueryValueExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Read(TextBytesWithTerminator("R17.1")), "");
}

TEST_F(HostValue, IsAskedForWith500BytesAndWithoutItsType)
{
  (void)Read(TextBytesWithTerminator("R17.1"));
  EXPECT_EQ(Diary()[1], R"(RegQueryValueExW(#1, "Value", type null, 500) = 0)");
}

// The current product.

TEST_F(HostProductKey, OfTheRecordedProductComesBackOpen)
{
  AddKey(UserHosts(), "AutoCAD");
  AddKey(UserHosts(), "Inventor");
  SetText(UserHosts(), "", "CurProd", "Inventor");
  const OpenedProduct product = Open(false);
  EXPECT_EQ(product.status, ERROR_SUCCESS);
  EXPECT_EQ(product.path, "Software\\Autodesk\\Inventor\\");
  EXPECT_EQ(product.openKeys, (Lines{"HKCU\\Software\\Autodesk\\Inventor"}));
}

TEST_F(HostProductKey, OfTheRecordedProductTakesTwoOpensForValues)
{
  AddKey(UserHosts(), "AutoCAD");
  SetText(UserHosts(), "", "CurProd", "AutoCAD");
  (void)Open(false);
  EXPECT_EQ(Diary(), (Lines{R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x1) = 0 #1)",
                            R"(RegQueryValueExW(#1, "CurProd", type null, 500) = 0)",
                            R"(RegCloseKey(#1) = 0)",
                            R"(RegOpenKeyExW(HKCU, "Software\Autodesk\AutoCAD\", 0, 0x1) = 0 #2)",
                            R"(RegCloseKey(#2) = 0)"}));
}

TEST_F(HostProductKey, OfVersion15IsThatOfTheMachineIn32Bits)
{
  AddKey(MachineHosts(), "AutoCAD 2002");
  AddKey(UserHosts(), "AutoCAD");
  SetText(MachineHosts(), "", "CurProd", "AutoCAD 2002");
  SetText(UserHosts(), "", "CurProd", "AutoCAD");
  const OpenedProduct product = Open(true);
  EXPECT_EQ(product.path, "Software\\Autodesk\\AutoCAD 2002\\");
  EXPECT_EQ(product.openKeys, (Lines{"HKLM\\Software\\Wow6432Node\\Autodesk\\AutoCAD 2002"}));
}

TEST_F(HostProductKey, OfARecordedProductWithoutKeyIsTheFirstSubkeyThatHoldsTheWord)
{
  for (const char* name : {"Inventor", "My AutoCAD LT", "AutoCAD", "AutoCAD 2010"})
    AddKey(UserHosts(), name);
  SetText(UserHosts(), "", "CurProd", "Removed");
  const OpenedProduct product = Open(false);
  EXPECT_EQ(product.status, ERROR_SUCCESS);
  EXPECT_EQ(product.path, "Software\\Autodesk\\My AutoCAD LT\\");
  EXPECT_EQ(product.openKeys, (Lines{"HKCU\\Software\\Autodesk\\My AutoCAD LT"}));
}

TEST_F(HostProductKey, IsSearchedByTheseCallsInThisOrder)
{
  AddKey(UserHosts(), "Inventor");
  AddKey(UserHosts(), "AutoCAD");
  SetText(UserHosts(), "", "CurProd", "Removed");
  (void)Open(false);
  EXPECT_EQ(Diary(), (Lines{R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x1) = 0 #1)",
                            R"(RegQueryValueExW(#1, "CurProd", type null, 500) = 0)",
                            R"(RegCloseKey(#1) = 0)",
                            R"(RegOpenKeyExW(HKCU, "Software\Autodesk\Removed\", 0, 0x1) = 2)",
                            R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x8) = 0 #2)",
                            R"(RegEnumKeyExW(#2, 0, 500) = 0 "Inventor")",
                            R"(RegEnumKeyExW(#2, 1, 500) = 0 "AutoCAD")", R"(RegCloseKey(#2) = 0)",
                            R"(RegOpenKeyExW(HKCU, "Software\Autodesk\AutoCAD\", 0, 0x1) = 0 #3)",
                            R"(RegCloseKey(#3) = 0)"}));
}

TEST_F(HostProductKey, OfVersion15IsSearchedInThe32BitView)
{
  AddKey(MachineHosts(), "AutoCAD");
  SetText(MachineHosts(), "", "CurProd", "Removed");
  (void)Open(true);
  EXPECT_EQ(DiaryOf({"RegOpenKeyExW"}),
            (Lines{R"(RegOpenKeyExW(HKLM, "Software\Autodesk\", 0, 0x201) = 0 #1)",
                   R"(RegOpenKeyExW(HKLM, "Software\Autodesk\Removed\", 0, 0x201) = 2)",
                   R"(RegOpenKeyExW(HKLM, "Software\Autodesk\", 0, 0x208) = 0 #2)",
                   R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD\", 0, 0x201) = 0 #3)"}));
}

TEST_F(HostProductKey, IsSearchedWithRegardToCase)
{
  AddKey(UserHosts(), "AUTOCAD");
  AddKey(UserHosts(), "autocad");
  SetText(UserHosts(), "", "CurProd", "Removed");
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\\\");
  AddKey(UserHosts(), "Other AutoCAD");
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\Other AutoCAD\\");
}

TEST_F(HostProductKey, WithoutARecordIsSearchedForThoughTheBaseOpensByTheEmptyName)
{
  AddKey(UserHosts(), "AutoCAD");
  const OpenedProduct product = Open(false);
  EXPECT_EQ(product.path, "Software\\Autodesk\\AutoCAD\\");
  EXPECT_EQ(product.openKeys, (Lines{"HKCU\\Software\\Autodesk\\AutoCAD"}));
  const Lines expected = {R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x1) = 0 #1)",
                          R"(RegCloseKey(#1) = 0)",
                          R"(RegOpenKeyExW(HKCU, "Software\Autodesk\\", 0, 0x1) = 0 #2)",
                          R"(RegCloseKey(#2) = 0)",
                          R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x8) = 0 #3)",
                          R"(RegCloseKey(#3) = 0)",
                          R"(RegOpenKeyExW(HKCU, "Software\Autodesk\AutoCAD\", 0, 0x1) = 0 #4)",
                          R"(RegCloseKey(#4) = 0)"};
  EXPECT_EQ(DiaryOf({"RegOpenKeyExW", "RegCloseKey"}), expected);
}

TEST_F(HostProductKey, WithoutARecordIsSearchedForWhereTheEmptyNameDoesNotOpen)
{
  AddKey(UserHosts(), "AutoCAD");
  FailCall("RegOpenKeyExW", 2, ERROR_BAD_PATHNAME);
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\AutoCAD\\");
  EXPECT_EQ(DiaryOf({"RegCloseKey"}).size(), 3u);
}

TEST_F(HostProductKey, OfAnUnreadableRecordIsSearchedForAsIfThereWereNone)
{
  AddKey(UserHosts(), "AutoCAD");
  AddKey(UserHosts(), "Inventor");
  SetText(UserHosts(), "", "CurProd", "");
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\AutoCAD\\");
  SetText(UserHosts(), "", "CurProd", "Inventor");
  FailCall("RegQueryValueExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\AutoCAD\\");
  FailCall("RegOpenKeyExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\AutoCAD\\");
}

TEST_F(HostProductKey, OfARecordLongerThanItsBufferIsSearchedForAsIfThereWereNone)
{
  const std::string name(250, 'x');
  AddKey(UserHosts(), name);
  AddKey(UserHosts(), "AutoCAD");
  SetText(UserHosts(), "", "CurProd", name);
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\AutoCAD\\");
  SetRaw(UserHosts(), "", "CurProd", TextBytes(name));
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\" + name + "\\");
}

TEST_F(HostProductKey, ThatNothingNamesIsTriedByTheEmptyNameAndThatStatusReturned)
{
  AddKey(UserHosts(), "Inventor");
  SetText(UserHosts(), "", "CurProd", "Removed");
  FailCall("RegOpenKeyExW", 4, ERROR_BAD_PATHNAME);
  const OpenedProduct refused = Open(false);
  EXPECT_EQ(refused.status, ERROR_BAD_PATHNAME);
  EXPECT_EQ(refused.path, "Software\\Autodesk\\\\");
  EXPECT_TRUE(refused.isNull);
  const OpenedProduct base = Open(false);
  EXPECT_EQ(base.status, ERROR_SUCCESS);
  EXPECT_EQ(base.path, "Software\\Autodesk\\\\");
  EXPECT_EQ(base.openKeys, (Lines{"HKCU\\Software\\Autodesk"}));
}

TEST_F(HostProductKey, OnAMachineWithoutHostsIsTriedFourTimesAndANullKeyClosed)
{
  const OpenedProduct product = Open(false);
  EXPECT_EQ(product.status, ERROR_FILE_NOT_FOUND);
  EXPECT_TRUE(product.isNull);
  EXPECT_EQ(Diary(), (Lines{R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x1) = 2)",
                            R"(RegOpenKeyExW(HKCU, "Software\Autodesk\\", 0, 0x1) = 2)",
                            R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x8) = 2)",
                            R"(RegCloseKey(null) = 6)",
                            R"(RegOpenKeyExW(HKCU, "Software\Autodesk\\", 0, 0x1) = 2)"}));
}

TEST_F(HostProductKey, IsNotSearchedForBehindAnEnumerationThatFails)
{
  for (const char* name : {"Inventor", "Maya", "AutoCAD"})
    AddKey(UserHosts(), name);
  FailCall("RegEnumKeyExW", 2, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\\\");
  EXPECT_EQ(DiaryOf({"RegEnumKeyExW"}).size(), 2u);
}

TEST_F(HostProductKey, IsTakenByANameThatComesWithAnError)
{
  for (const char* name : {"Inventor", "AutoCAD"})
    AddKey(UserHosts(), name);
  FailCall("RegEnumKeyExW with a name", 2, ERROR_MORE_DATA);
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\AutoCAD\\");
}

TEST_F(HostProductKey, IsSearchedForWithRoomFor500CharactersAndNoMore)
{
  const std::string longest = "AutoCAD" + std::string(492, 'x');
  AddKey(UserHosts(), longest);
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\" + longest + "\\");
  Registry().RemoveKey(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk\\" + longest);
  AddKey(UserHosts(), longest + "y");
  AddKey(UserHosts(), "AutoCAD");
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\\\");
}

TEST_F(HostProductKey, ThatMayNotBeEnumeratedIsTriedByTheEmptyName)
{
  AddKey(UserHosts(), "AutoCAD");
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk",
                        KEY_ENUMERATE_SUB_KEYS);
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\\\");
  EXPECT_EQ(DiaryOf({"RegEnumKeyExW"}), Lines());
}

TEST_F(HostProductKey, ThatMayNotBeReadGivesTheErrorOfTheLastOpen)
{
  AddKey(UserHosts(), "AutoCAD");
  SetText(UserHosts(), "", "CurProd", "AutoCAD");
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk\\AutoCAD",
                        KEY_QUERY_VALUE);
  const OpenedProduct product = Open(false);
  EXPECT_EQ(product.status, ERROR_ACCESS_DENIED);
  EXPECT_EQ(product.path, "Software\\Autodesk\\AutoCAD\\");
}

TEST_F(HostProductKey, IsFoundThoughClosesFail)
{
  AddKey(UserHosts(), "AutoCAD");
  SetText(UserHosts(), "", "CurProd", "Removed");
  FailCall("RegCloseKey", 1, ERROR_INVALID_HANDLE);
  FailCall("RegCloseKey", 2, ERROR_INVALID_HANDLE);
  EXPECT_EQ(Open(false).path, "Software\\Autodesk\\AutoCAD\\");
  keysLeftOpen = 2;
}
