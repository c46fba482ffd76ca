#include "host/HostEnumeration.h"

#include "tests/unit/host/HostMachine.h"

namespace {

// Version and product both named.
class ExactHostKey : public HostMachine
{
protected:
  static std::string Find(const char* major, const char* minor, const char* product,
                          bool useMachineRoot = false)
  {
    QulString path(HostBasePath);
    FindHostKeyExact(ScopeOfHostKeys(useMachineRoot), path, Qul(major), Qul(minor), Qul(product));
    return Utf8(path);
  }
};

struct FoundKey
{
  std::string path;
  std::string product;
};

// A version named, and perhaps a piece of a product's name.
class HostKeyByVersion : public HostMachine
{
protected:
  HostKeyByVersion() { SetText(UserHosts(), "", "CurProd", "AutoCAD"); }

  static FoundKey Find(const char* major, const char* minor, const char* product,
                       bool useMachineRoot = false)
  {
    QulString path = L"before";
    QulString productPart = Qul(product);
    FindHostKeyByVersion(useMachineRoot, ScopeOfHostKeys(useMachineRoot), path, Qul(major),
                         Qul(minor), productPart);
    return {Utf8(path), Utf8(productPart)};
  }
};

const std::string Base = "Software\\Autodesk\\";

}  // namespace

TEST_F(ExactHostKey, HasNoBackslashAtItsEnd)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  EXPECT_EQ(Find("R17", "1", "ABCD-0001"), Base + "AutoCAD\\R17.1\\ABCD-0001");
}

TEST_F(ExactHostKey, MayStandBelowAnyProduct)
{
  AddKey(UserHosts(), "AutoCAD\\R17.2\\ABCD-0001");
  AddKey(UserHosts(), "Inventor\\R17.1\\ABCD-0001");
  EXPECT_EQ(Find("R17", "1", "ABCD-0001"), Base + "Inventor\\R17.1\\ABCD-0001");
}

TEST_F(ExactHostKey, IsTheFirstInTheOrderOfEnumeration)
{
  for (const char* product : {"Maya", "Inventor", "AutoCAD"})
    AddKey(UserHosts(), std::string(product) + "\\R17.1\\ABCD-0001");
  EXPECT_EQ(Find("R17", "1", "ABCD-0001"), Base + "Maya\\R17.1\\ABCD-0001");
}

TEST_F(ExactHostKey, ThatDoesNotExistLeavesTheBaseWithItsBackslash)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  EXPECT_EQ(Find("R17", "1", "ABCD"), Base);
  EXPECT_EQ(Find("17", "1", "ABCD-0001"), Base);
  EXPECT_EQ(Find("R17", "2", "ABCD-0001"), Base);
}

TEST_F(ExactHostKey, IsOpenedBelowEachNameAndClosed)
{
  AddKey(UserHosts(), "Inventor");
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  (void)Find("R17", "1", "ABCD-0001");
  EXPECT_EQ(Diary(), (Lines{R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x8) = 0 #1)",
                            R"(RegEnumKeyExW(#1, 0, 500) = 0 "Inventor")",
                            R"(RegOpenKeyExW(#1, "Inventor\R17.1\ABCD-0001", 0, 0x1) = 2)",
                            R"(RegEnumKeyExW(#1, 1, 500) = 0 "AutoCAD")",
                            R"(RegOpenKeyExW(#1, "AutoCAD\R17.1\ABCD-0001", 0, 0x1) = 0 #2)",
                            R"(RegCloseKey(#2) = 0)", R"(RegCloseKey(#1) = 0)"}));
}

TEST_F(ExactHostKey, OfVersion15IsThatOfTheMachineIn32Bits)
{
  AddKey(UserHosts(), "AutoCAD\\R15.0\\ABCD-0001");
  AddKey(MachineHosts(), "AutoCAD 2000\\R15.0\\ABCD-0001");
  EXPECT_EQ(Find("R15", "0", "ABCD-0001", true), Base + "AutoCAD 2000\\R15.0\\ABCD-0001");
  EXPECT_EQ(DiaryOf({"RegOpenKeyExW"}),
            (Lines{R"(RegOpenKeyExW(HKLM, "Software\Autodesk\", 0, 0x208) = 0 #1)",
                   R"(RegOpenKeyExW(#1, "AutoCAD 2000\R15.0\ABCD-0001", 0, 0x201) = 0 #2)"}));
}

TEST_F(ExactHostKey, IsTriedOnceMoreAfterTheLastName)
{
  AddKey(UserHosts(), "AutoCAD");
  (void)Find("R17", "1", "ABCD-0001");
  EXPECT_EQ(DiaryOf({"RegEnumKeyExW"}).size(), 2u);
  EXPECT_EQ(DiaryOf({"RegOpenKeyExW"}).size(), 3u);
}

TEST_F(ExactHostKey, IsNotLookedForBehindAnEnumerationThatFails)
{
  AddKey(UserHosts(), "Inventor");
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  FailCall("RegEnumKeyExW", 2, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Find("R17", "1", "ABCD-0001"), Base);
  EXPECT_EQ(DiaryOf({"RegEnumKeyExW"}).size(), 2u);
}

TEST_F(ExactHostKey, ThatMayNotBeReadIsPassedOver)
{
  AddKey(UserHosts(), "Inventor\\R17.1\\ABCD-0001");
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native,
                        Base + "Inventor\\R17.1\\ABCD-0001", KEY_QUERY_VALUE);
  EXPECT_EQ(Find("R17", "1", "ABCD-0001"), Base + "AutoCAD\\R17.1\\ABCD-0001");
}

TEST_F(ExactHostKey, WithoutTheBaseIsGivenUpAndANullKeyClosed)
{
  EXPECT_EQ(Find("R17", "1", "ABCD-0001"), Base);
  EXPECT_EQ(Diary(), (Lines{R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x8) = 2)",
                            R"(RegCloseKey(null) = 6)"}));
}

TEST_F(ExactHostKey, IsFoundThoughClosesFail)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  FailCall("RegCloseKey", 1, ERROR_INVALID_HANDLE);
  FailCall("RegCloseKey", 2, ERROR_INVALID_HANDLE);
  EXPECT_EQ(Find("R17", "1", "ABCD-0001"), Base + "AutoCAD\\R17.1\\ABCD-0001");
  keysLeftOpen = 2;
}

TEST_F(ExactHostKey, OfALongNameIsPutTogetherWhole)
{
  const std::string product(499, 'p');
  AddKey(UserHosts(), product + "\\R17.1\\ABCD-0001");
  EXPECT_EQ(Find("R17", "1", "ABCD-0001"), Base + product + "\\R17.1\\ABCD-0001");
  Registry().RemoveKey(HKEY_CURRENT_USER, RegistryView::Native, Base + product);
  AddKey(UserHosts(), product + "p\\R17.1\\ABCD-0001");
  EXPECT_EQ(Find("R17", "1", "ABCD-0001"), Base);
}

// By version.

TEST_F(HostKeyByVersion, IsTheFirstSubkeyOfTheFirstVersionThatHoldsTheText)
{
  for (const char* key :
       {"R16.2\\AAAA-0001", "R17.1\\BBBB-0002", "R17.1\\AAAA-0001", "R17.2\\CCCC-0001"})
    AddKey(UserHosts(), std::string("AutoCAD\\") + key);
  const FoundKey found = Find("17", "", "");
  EXPECT_EQ(found.path, Base + "AutoCAD\\R17.1\\BBBB-0002\\");
  EXPECT_EQ(found.product, "BBBB-0002");
}

TEST_F(HostKeyByVersion, MatchesTheVersionAnywhereInTheName)
{
  AddKey(UserHosts(), "AutoCAD\\Preview of R2017.1 x\\ABCD-0001");
  EXPECT_EQ(Find("17", "", "").path, Base + "AutoCAD\\Preview of R2017.1 x\\ABCD-0001\\");
}

TEST_F(HostKeyByVersion, MatchesTheVersionBehindAControlCharacter)
{
  AddKey(UserHosts(), "AutoCAD\\\1R17.1\\ABCD-0001");
  EXPECT_EQ(Find("17", "1", "").path, Base + "AutoCAD\\\1R17.1\\ABCD-0001\\");
}

TEST_F(HostKeyByVersion, MatchesMajorAndMinorPartWithADotBetween)
{
  AddKey(UserHosts(), "AutoCAD\\R17.0\\AAAA-0001");
  AddKey(UserHosts(), "AutoCAD\\R17.2\\BBBB-0001");
  EXPECT_EQ(Find("17", "2", "").path, Base + "AutoCAD\\R17.2\\BBBB-0001\\");
  EXPECT_EQ(Find("R17", "", "").path, Base + "AutoCAD\\R17.0\\AAAA-0001\\");
}

TEST_F(HostKeyByVersion, TakesTheSecondVersionIfNothingIsAcceptedInTheFirst)
{
  AddKey(UserHosts(), "AutoCAD\\R17.0");
  AddKey(UserHosts(), "AutoCAD\\R17.1\\AAAA-0001");
  AddKey(UserHosts(), "AutoCAD\\R17.2\\BBBB-0001");
  EXPECT_EQ(Find("17", "", "").path, Base + "AutoCAD\\R17.1\\AAAA-0001\\");
  const FoundKey found = Find("17", "", "BBBB");
  EXPECT_EQ(found.path, Base + "AutoCAD\\R17.2\\BBBB-0001\\");
  EXPECT_EQ(found.product, "BBBB-0001");
}

TEST_F(HostKeyByVersion, AcceptsTheFirstSubkeyThatHoldsThePieceAndGivesItsWholeName)
{
  for (const char* subkey : {"ABCD-0001", "ABCD-0002", "WXYZ-0002"})
    AddKey(UserHosts(), std::string("AutoCAD\\R17.1\\") + subkey);
  const FoundKey found = Find("17", "", "0002");
  EXPECT_EQ(found.path, Base + "AutoCAD\\R17.1\\ABCD-0002\\");
  EXPECT_EQ(found.product, "ABCD-0002");
}

TEST_F(HostKeyByVersion, ComparesWithRegardToCase)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  EXPECT_EQ(Find("r17", "", "").path, "");
  EXPECT_EQ(Find("R17", "", "abcd").path, "");
}

TEST_F(HostKeyByVersion, ThatIsNotFoundGivesAnEmptyPathAndLeavesTheProductAlone)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  EXPECT_EQ(Find("18", "", "").path, "");
  const FoundKey found = Find("17", "", "WXYZ");
  EXPECT_EQ(found.path, "");
  EXPECT_EQ(found.product, "WXYZ");
}

TEST_F(HostKeyByVersion, IsLookedForByTheseCallsInThisOrder)
{
  AddKey(UserHosts(), "AutoCAD\\R16.2");
  AddKey(UserHosts(), "AutoCAD\\R17.0");
  AddKey(UserHosts(), "AutoCAD\\R17.1\\AAAA-0001");
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  (void)Find("R17", "", "ABCD");
  const Lines expected = {
      R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x1) = 0 #1)",
      R"(RegQueryValueExW(#1, "CurProd", type null, 500) = 0)",
      R"(RegCloseKey(#1) = 0)",
      R"(RegOpenKeyExW(HKCU, "Software\Autodesk\AutoCAD\", 0, 0x1) = 0 #2)",
      R"(RegCloseKey(#2) = 0)",
      R"(RegOpenKeyExW(HKCU, "Software\Autodesk\AutoCAD\", 0, 0x8) = 0 #3)",
      R"(RegEnumKeyExW(#3, 0, 500) = 0 "R16.2")",
      R"(RegEnumKeyExW(#3, 1, 500) = 0 "R17.0")",
      R"(RegOpenKeyExW(HKCU, "Software\Autodesk\AutoCAD\R17.0\", 0, 0x8) = 0 #4)",
      R"(RegEnumKeyExW(#4, 0, 500) = 259)",
      R"(RegCloseKey(#4) = 0)",
      R"(RegEnumKeyExW(#3, 2, 500) = 0 "R17.1")",
      R"(RegOpenKeyExW(HKCU, "Software\Autodesk\AutoCAD\R17.1\", 0, 0x8) = 0 #5)",
      R"(RegEnumKeyExW(#5, 0, 500) = 0 "AAAA-0001")",
      R"(RegEnumKeyExW(#5, 1, 500) = 0 "ABCD-0001")",
      R"(RegCloseKey(#5) = 0)",
      R"(RegCloseKey(#3) = 0)"};
  EXPECT_EQ(Diary(), expected);
}

TEST_F(HostKeyByVersion, OfVersion15IsThatOfTheMachineIn32Bits)
{
  SetText(MachineHosts(), "", "CurProd", "AutoCAD 2000");
  AddKey(MachineHosts(), "AutoCAD 2000\\R15.0\\WXYZ-0001");
  AddKey(UserHosts(), "AutoCAD\\R15.0\\ABCD-0001");
  EXPECT_EQ(Find("15", "", "", true).path, Base + "AutoCAD 2000\\R15.0\\WXYZ-0001\\");
  EXPECT_EQ(
      DiaryOf({"RegOpenKeyExW"}),
      (Lines{R"(RegOpenKeyExW(HKLM, "Software\Autodesk\", 0, 0x201) = 0 #1)",
             R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD 2000\", 0, 0x201) = 0 #2)",
             R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD 2000\", 0, 0x208) = 0 #3)",
             R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD 2000\R15.0\", 0, 0x208) = 0 #4)"}));
}

TEST_F(HostKeyByVersion, GoesOnWithAProductKeyThatMayNotBeReadButEnumerated)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, Base + "AutoCAD", KEY_QUERY_VALUE);
  EXPECT_EQ(Find("17", "", "").path, Base + "AutoCAD\\R17.1\\ABCD-0001\\");
  EXPECT_EQ(DiaryOf({"RegCloseKey"})[2], "RegCloseKey(null) = 6");
}

TEST_F(HostKeyByVersion, WithoutAnyHostsClosesANullKeyTwiceMore)
{
  Registry().RemoveKey(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk");
  EXPECT_EQ(Find("17", "", "ABCD").path, "");
  const Lines diary = Diary();
  ASSERT_EQ(diary.size(), 8u);
  EXPECT_EQ(diary[5], "RegCloseKey(null) = 6");
  EXPECT_EQ(diary[6], R"(RegOpenKeyExW(HKCU, "Software\Autodesk\\", 0, 0x8) = 2)");
  EXPECT_EQ(diary[7], "RegCloseKey(null) = 6");
}

TEST_F(HostKeyByVersion, IsNotFoundBelowAProductKeyThatMayNotBeEnumerated)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, Base + "AutoCAD",
                        KEY_ENUMERATE_SUB_KEYS);
  EXPECT_EQ(Find("17", "", "").path, "");
  EXPECT_EQ(DiaryOf({"RegEnumKeyExW"}), Lines());
  EXPECT_EQ(Diary().back(), "RegCloseKey(null) = 6");
}

TEST_F(HostKeyByVersion, PassesOverAVersionKeyThatMayNotBeEnumeratedAndClosesANullKey)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  AddKey(UserHosts(), "AutoCAD\\R17.2\\WXYZ-0001");
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, Base + "AutoCAD\\R17.1",
                        KEY_ENUMERATE_SUB_KEYS);
  EXPECT_EQ(Find("17", "", "").path, Base + "AutoCAD\\R17.2\\WXYZ-0001\\");
  EXPECT_EQ(DiaryOf({"RegCloseKey"})[2], "RegCloseKey(null) = 6");
}

TEST_F(HostKeyByVersion, EndsItsWalksAtAnEnumerationThatFails)
{
  AddKey(UserHosts(), "AutoCAD\\R16.2\\ABCD-0001");
  AddKey(UserHosts(), "AutoCAD\\R17.1\\AAAA-0001");
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  FailCall("RegEnumKeyExW", 2, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Find("17", "", "").path, "");
  EXPECT_EQ(DiaryOf({"RegEnumKeyExW"}).size(), 2u);
  FailCall("RegEnumKeyExW", 4, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Find("17", "", "ABCD").path, "");
}

TEST_F(HostKeyByVersion, GoesOnToTheNextVersionWhenAWalkOfSubkeysFails)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\AAAA-0001");
  AddKey(UserHosts(), "AutoCAD\\R17.2\\BBBB-0001");
  FailCall("RegEnumKeyExW", 2, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Find("17", "", "").path, Base + "AutoCAD\\R17.2\\BBBB-0001\\");
}

TEST_F(HostKeyByVersion, WithoutARecordLooksBelowTheFirstKeyThatNamesTheHost)
{
  SetText(UserHosts(), "", "CurProd", "Removed");
  AddKey(UserHosts(), "Inventor\\R17.1\\AAAA-0001");
  AddKey(UserHosts(), "AutoCAD LT\\R17.1\\ABCD-0001");
  EXPECT_EQ(Find("17", "", "").path, Base + "AutoCAD LT\\R17.1\\ABCD-0001\\");
}

TEST_F(HostKeyByVersion, IsFoundThoughClosesFail)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  for (int close = 1; close <= 4; ++close)
    FailCall("RegCloseKey", close, ERROR_INVALID_HANDLE);
  EXPECT_EQ(Find("17", "", "").path, Base + "AutoCAD\\R17.1\\ABCD-0001\\");
  keysLeftOpen = 4;
}

TEST_F(HostKeyByVersion, EndsItsWalkAtANameLongerThanItsBuffer)
{
  const std::string longest = "R17" + std::string(496, 'v');
  AddKey(UserHosts(), "AutoCAD\\" + longest + "\\ABCD-0001");
  EXPECT_EQ(Find("17", "", "").path, Base + "AutoCAD\\" + longest + "\\ABCD-0001\\");
  Registry().RemoveKey(HKEY_CURRENT_USER, RegistryView::Native, Base + "AutoCAD\\" + longest);
  AddKey(UserHosts(), "AutoCAD\\" + longest + "v\\ABCD-0001");
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  EXPECT_EQ(Find("17", "", "").path, "");
}
