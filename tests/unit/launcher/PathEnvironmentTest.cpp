#include "launcher/PathEnvironment.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/ProcessDouble.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/Text.h"

#include <gtest/gtest.h>

#include <errno.h>

#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;
using Bytes = std::vector<unsigned char>;

const char* const EnvironmentKey = "Software\\Norvane\\Kestrelforge\\2010\\Environment";

const auto EndedAbnormally = testing::ExitedWithCode(3);
const char* const OnlyTheEnd = "^TerminateProcess 0xC0000417\n$";

// Every character that a buffer holds before a call.
constexpr wchar_t Poison = 0xBDBD;

class PathEnvironment : public PlatformTest
{
protected:
  void TearDown() override
  {
    EXPECT_EQ(Registry().OpenHandleCount(), 0);
    PlatformTest::TearDown();
  }

  static void SetPath(const std::string& list) { Processes().SetVariable("PATH", list); }

  static void SetAddPath(const std::string& text)
  {
    SetRawAddPath(REG_SZ, TextBytesWithTerminator(text));
  }

  static void SetRawAddPath(DWORD type, const Bytes& bytes)
  {
    Registry().SetRaw(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentKey, "AddPath", type,
                      bytes);
  }

  // The PATH that the host will see.
  static std::string Update()
  {
    UpdatePathEnvironment();
    return Processes().Variable("PATH");
  }

  // What is kept of a list; buffers are poisoned, and the lower-cased list goes to lowered.
  static std::string Clean(const std::string& list, std::string* lowered = nullptr)
  {
    std::vector<wchar_t> current(PathListCharacters, Poison);
    const WideText text(list);
    std::copy(text.c_str(), text.c_str() + text.Length() + 1, current.begin());
    std::vector<wchar_t> cleaned(PathListCharacters, Poison);
    CleanPathList(current.data(), cleaned.data());
    if (lowered != nullptr)
      *lowered = Utf8(current.data());
    return Utf8(cleaned.data());
  }

  // A list of count elements of 2047 characters, without a separator at its end.
  static std::string LongElements(size_t count)
  {
    std::string list(2047, 'a');
    for (size_t i = 1; i < count; ++i)
      list += ";" + std::string(2047, 'a');
    return list;
  }
};

using PathEnvironmentDeathTest = PathEnvironment;

}  // namespace

TEST_F(PathEnvironment, TheAddOnsFoldersReplaceItsOldOnesInFront)
{
  SetPath("C:\\Windows;C:\\Program Files\\Norvane\\Kestrelforge\\Bin;D:\\Tools");
  SetAddPath("X:\\A");
  EXPECT_EQ(Update(), "X:\\A;c:\\windows;d:\\tools;");
}

TEST_F(PathEnvironment, TheCallsComeInOrderWithTheirSizes)
{
  SetPath("C:\\Windows;.;D:\\Norvane\\Kestrelforge;E:\\T");
  SetAddPath("X:\\A");
  Processes().SetLongPath("C:\\Windows", "C:\\Windows");
  (void)Update();
  EXPECT_EQ(
      Diary(),
      (Lines{
          "RegOpenKeyExW(HKLM, \"Software\\Norvane\\Kestrelforge\\2010\\Environment\", 0, 0x20019)"
          " = 0 #1",
          "RegQueryValueExW(#1, \"AddPath\", type 1, 65536) = 0", "RegCloseKey(#1) = 0",
          "GetEnvironmentVariableW(\"PATH\", 32768) = 41",
          "GetLongPathNameW(\"c:\\windows\", 2048) = 10",
          "GetLongPathNameW(\"d:\\norvane\\kestrelforge\", 2048) = 0",
          "GetLongPathNameW(\"e:\\t\", 2048) = 0",
          "SetEnvironmentVariableW(\"PATH\", \"X:\\A;c:\\windows;e:\\t;\") = 1"}));
}

TEST_F(PathEnvironment, AnAddPathThatEndsInASeparatorGetsNoSecondOne)
{
  SetPath("C:\\Windows");
  SetAddPath("X:\\A;Y:\\B;");
  EXPECT_EQ(Update(), "X:\\A;Y:\\B;c:\\windows;");
}

TEST_F(PathEnvironment, AnAddPathThatIsASeparatorStaysOne)
{
  SetPath("C:\\Windows");
  SetAddPath(";");
  EXPECT_EQ(Update(), ";c:\\windows;");
}

TEST_F(PathEnvironment, AddPathKeepsItsCaseAndIsNotFiltered)
{
  SetPath("C:\\WINDOWS");
  SetAddPath("X:\\Norvane\\Kestrelforge;.;;Y:\\B");
  EXPECT_EQ(Update(), "X:\\Norvane\\Kestrelforge;.;;Y:\\B;c:\\windows;");
}

TEST_F(PathEnvironment, WithNothingKeptAddPathStandsAlone)
{
  SetPath("C:\\Norvane\\Kestrelforge;.");
  SetAddPath("X:\\A");
  EXPECT_EQ(Update(), "X:\\A;");
}

TEST_F(PathEnvironment, WithoutAnEnvironmentKeyTheKeptListHasNoSeparatorInFront)
{
  SetPath("C:\\Windows");
  EXPECT_EQ(Update(), "c:\\windows;");
  EXPECT_EQ(DiaryOf({"RegQueryValueExW", "RegCloseKey"}), Lines());
}

TEST_F(PathEnvironment, WithoutAnAddPathTheKeptListHasNoSeparatorInFront)
{
  SetPath("C:\\Windows");
  Registry().AddKey(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentKey);
  EXPECT_EQ(Update(), "c:\\windows;");
  EXPECT_EQ(DiaryOf({"RegCloseKey"}), Lines{"RegCloseKey(#1) = 0"});
}

TEST_F(PathEnvironment, AnEmptyAddPathPutsNoSeparatorInFront)
{
  for (const Bytes& bytes : {Bytes(), TextBytesWithTerminator(""), Bytes(4, 0), Bytes(1, 'x')}) {
    SetPath("C:\\Windows");
    SetRawAddPath(REG_SZ, bytes);
    EXPECT_EQ(Update(), "c:\\windows;") << bytes.size() << " bytes";
  }
}

TEST_F(PathEnvironment, AFailedQueryCountsAsAnEmptyAddPath)
{
  SetPath("C:\\Windows");
  SetAddPath("X:\\A");
  FailCall("RegQueryValueExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Update(), "c:\\windows;");
}

TEST_F(PathEnvironment, AddPathIsReadFromTheNativeViewOfTheMachineAlone)
{
  SetPath("C:\\Windows");
  Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Wow32, EnvironmentKey, "AddPath", "X:\\32");
  Registry().SetText(HKEY_CURRENT_USER, RegistryView::Native, EnvironmentKey, "AddPath", "X:\\U");
  EXPECT_EQ(Update(), "c:\\windows;");
}

TEST_F(PathEnvironment, AddPathEndsWithItsTextHoweverItIsStored)
{
  Bytes twoTerminators = TextBytesWithTerminator("X:\\A");
  twoTerminators.insert(twoTerminators.end(), 2, 0);
  Bytes textBehind = twoTerminators;
  textBehind.back() = 'y';
  Bytes odd = TextBytes("X:\\A");
  odd.push_back('y');
  for (const Bytes& bytes : {TextBytes("X:\\A"), twoTerminators, textBehind, odd}) {
    SetPath("C:\\Windows");
    SetRawAddPath(REG_SZ, bytes);
    EXPECT_EQ(Update(), "X:\\A;c:\\windows;") << bytes.size() << " bytes";
  }
}

TEST_F(PathEnvironment, TheTypeOfAddPathIsNotLookedAt)
{
  for (const DWORD type : std::initializer_list<DWORD>{REG_NONE, REG_EXPAND_SZ, REG_BINARY}) {
    SetPath("C:\\Windows");
    SetRawAddPath(type, TextBytesWithTerminator("%X%\\A"));
    EXPECT_EQ(Update(), "%X%\\A;c:\\windows;") << "type " << type;
  }
}

TEST_F(PathEnvironment, AnAddPathThatIsLargerThanItsBufferCountsAsEmpty)
{
  SetPath("C:\\Windows");
  SetRawAddPath(REG_SZ, TextBytes(std::string(32769, 'x')));
  EXPECT_EQ(Update(), "c:\\windows;");
}

TEST_F(PathEnvironment, AnAddPathThatFillsTheWholeLimitIsTaken)
{
  const std::string list = std::string(32766, 'x') + ";";
  SetPath(".");
  SetAddPath(list);
  EXPECT_EQ(Update(), list);
}

TEST_F(PathEnvironment, WithoutAPathNothingIsSet)
{
  SetAddPath("X:\\A");
  UpdatePathEnvironment();
  EXPECT_FALSE(Processes().HasVariable("PATH"));
  EXPECT_EQ(DiaryOf({"SetEnvironmentVariableW", "GetLongPathNameW"}), Lines());
}

TEST_F(PathEnvironment, AnEmptyPathIsNotChanged)
{
  SetPath("");
  SetAddPath("X:\\A");
  EXPECT_EQ(Update(), "");
  EXPECT_EQ(DiaryOf({"SetEnvironmentVariableW"}), Lines());
}

TEST_F(PathEnvironment, APathThatCanNotBeReadIsNotChanged)
{
  SetPath("C:\\Windows");
  FailCall("GetEnvironmentVariableW", 1, ERROR_NOT_ENOUGH_MEMORY);
  EXPECT_EQ(Update(), "C:\\Windows");
}

TEST_F(PathEnvironment, APathBeyondTheBufferCountsAsAnEmptyList)
{
  SetPath("C:\\Windows;" + std::string(32757, 'x'));
  SetAddPath("X:\\A");
  EXPECT_EQ(Update(), "X:\\A;");
  EXPECT_EQ(DiaryOf({"GetEnvironmentVariableW"}),
            Lines{"GetEnvironmentVariableW(\"PATH\", 32768) = 32769"});
}

TEST_F(PathEnvironment, APathBeyondTheBufferWithoutAnAddPathBecomesEmpty)
{
  SetPath(std::string(40000, 'x'));
  EXPECT_EQ(Update(), "");
  EXPECT_EQ(DiaryOf({"SetEnvironmentVariableW"}),
            Lines{"SetEnvironmentVariableW(\"PATH\", \"\") = 1"});
}

TEST_F(PathEnvironment, APathThatFillsTheBufferIsCleaned)
{
  // 15 times 2048, then 2046 and a separator.
  const std::string list = LongElements(15) + ";" + std::string(2046, 'b') + ";";
  ASSERT_EQ(list.size(), 32767u);
  SetPath(list);
  EXPECT_EQ(Update(), list);
}

TEST_F(PathEnvironment, AFailedSetIsNotLookedAt)
{
  SetPath("C:\\Windows");
  FailCall("SetEnvironmentVariableW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Update(), "C:\\Windows");
}

TEST_F(PathEnvironment, AFailedCloseIsNotLookedAt)
{
  SetPath("C:\\Windows");
  SetAddPath("X:\\A");
  FailCall("RegCloseKey", 1, ERROR_INVALID_HANDLE);
  EXPECT_EQ(Update(), "X:\\A;c:\\windows;");
  EXPECT_EQ(Registry().OpenHandleCount(), 1);
  ResetPlatform();
}

TEST_F(PathEnvironment, TheListIsLoweredInPlace)
{
  std::string lowered;
  (void)Clean("C:\\Windows;.;D:\\Norvane\\Kestrelforge", &lowered);
  EXPECT_EQ(lowered, "c:\\windows;.;d:\\norvane\\kestrelforge");
}

TEST_F(PathEnvironment, ElementsKeepTheirOrderAndDuplicatesStay)
{
  EXPECT_EQ(Clean("Z:\\B;A:\\A;Z:\\B;z:\\b"), "z:\\b;a:\\a;z:\\b;z:\\b;");
}

TEST_F(PathEnvironment, AnElementOfOneCharacterIsDropped)
{
  EXPECT_EQ(Clean(".;C:\\A;X;C:\\B;."), "c:\\a;c:\\b;");
  EXPECT_EQ(Clean("."), "");
}

TEST_F(PathEnvironment, AnElementOfTwoCharactersIsKept)
{
  EXPECT_EQ(Clean("..;C:"), "..;c:;");
}

TEST_F(PathEnvironment, EmptyElementsDisappear)
{
  EXPECT_EQ(Clean(";;C:\\A;;;C:\\B;"), "c:\\a;c:\\b;");
  EXPECT_EQ(Clean(""), "");
  EXPECT_EQ(Clean(";"), "");
}

TEST_F(PathEnvironment, TheLastElementIsJudgedLikeTheOthers)
{
  EXPECT_EQ(Clean("C:\\A;D:\\Norvane\\Kestrelforge"), "c:\\a;");
  EXPECT_EQ(Clean("D:\\Norvane\\Kestrelforge;C:\\A"), "c:\\a;");
}

TEST_F(PathEnvironment, QuotesDoNotGuardASeparator)
{
  EXPECT_EQ(Clean("\"C:\\A;Norvane\\Kestrelforge\";D:\\B"), "\"c:\\a;d:\\b;");
}

TEST_F(PathEnvironment, BlanksBelongToAnElement)
{
  EXPECT_EQ(Clean(" C:\\A ;  ;D:\\B"), " c:\\a ;  ;d:\\b;");
}

TEST_F(PathEnvironment, AnElementThatHoldsAFragmentIsDroppedWhateverItsCase)
{
  const char* const elements[] = {"C:\\Program Files\\Norvane\\Kestrelforge\\Bin",
                                  "NORVANE\\KESTRELFORGE",
                                  "d:\\nOrVaNe\\kEsTrElFoRgE2009",
                                  "\\\\server\\xnorvane\\kestrelforge",
                                  "C:\\Program Files\\Common Files\\Ovl Hyn Trek\\Common\\Bin",
                                  "OVL HYN TREK\\COMMON\\BIN",
                                  "E:\\Old ovl hyn trek\\common\\binaries\\x64"};
  for (const char* element : elements)
    EXPECT_EQ(Clean("C:\\A;" + std::string(element) + ";C:\\B"), "c:\\a;c:\\b;") << element;
}

TEST_F(PathEnvironment, AnElementThatHoldsAPieceOfAFragmentIsKept)
{
  const char* const elements[] = {"c:\\norvane",
                                  "c:\\kestrelforge\\norvane",
                                  "c:\\norvane\\\\kestrelforge",
                                  "c:\\norvane/kestrelforge",
                                  "c:\\ovl hyn trek\\common",
                                  "c:\\ovlhyntrek\\common\\bin"};
  for (const char* element : elements)
    EXPECT_EQ(Clean(element), std::string(element) + ";");
}

TEST_F(PathEnvironment, AFragmentCutByASeparatorIsNone)
{
  EXPECT_EQ(Clean("C:\\Norvane;\\Kestrelforge"), "c:\\norvane;\\kestrelforge;");
}

TEST_F(PathEnvironment, AShortFormIsDroppedForItsLongFormInLowerCase)
{
  for (const char* longForm : {"c:\\program files\\norvane\\kestrelforge\\bin",
                               "C:\\Program Files\\ovl hyn trek\\common\\bin"}) {
    Processes().SetLongPath("C:\\PROGRA~1\\NORVAN~1", longForm);
    EXPECT_EQ(Clean("C:\\PROGRA~1\\NORVAN~1"), "") << longForm;
  }
}

TEST_F(PathEnvironment, AShortFormIsKeptIfItsLongFormHasCapitals)
{
  Processes().SetLongPath("C:\\PROGRA~1\\NORVAN~1", "C:\\Program Files\\Norvane\\Kestrelforge");
  EXPECT_EQ(Clean("C:\\PROGRA~1\\NORVAN~1"), "c:\\progra~1\\norvan~1;");
}

TEST_F(PathEnvironment, WhatIsKeptIsTheElementAndNotItsLongForm)
{
  Processes().SetLongPath("C:\\PROGRA~1", "C:\\Program Files");
  EXPECT_EQ(Clean("C:\\PROGRA~1"), "c:\\progra~1;");
}

TEST_F(PathEnvironment, AnElementWithoutALongFormFollowsTheLastOneFound)
{
  Processes().SetLongPath("C:\\NORVAN~1", "c:\\norvane\\kestrelforge");
  Processes().SetLongPath("C:\\Known", "C:\\Known");
  EXPECT_EQ(Clean("D:\\First;C:\\NORVAN~1;D:\\Gone;.;D:\\GoneToo;C:\\Known;D:\\Kept"),
            "d:\\first;c:\\known;d:\\kept;");
}

TEST_F(PathEnvironment, ALongFormStaysBehindAnElementDroppedForItself)
{
  Processes().SetLongPath("C:\\Norvane\\Kestrelforge", "c:\\norvane\\kestrelforge");
  EXPECT_EQ(Clean("D:\\Kept;C:\\Norvane\\Kestrelforge;D:\\Gone"), "d:\\kept;");
}

TEST_F(PathEnvironment, NoLongFormIsLeftFromAnEarlierList)
{
  Processes().SetLongPath("C:\\NORVAN~1", "c:\\norvane\\kestrelforge");
  EXPECT_EQ(Clean("C:\\NORVAN~1"), "");
  EXPECT_EQ(Clean("D:\\Kept"), "d:\\kept;");
}

TEST_F(PathEnvironment, AFailedLongFormIsNotLookedAt)
{
  Processes().SetLongPath("C:\\NORVAN~1", "c:\\norvane\\kestrelforge");
  FailCall("GetLongPathNameW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Clean("C:\\NORVAN~1;C:\\A"), "c:\\norvan~1;c:\\a;");
}

TEST_F(PathEnvironment, ALongFormThatFillsItsBufferIsSearched)
{
  const std::string longForm = std::string(2027, 'x') + "norvane\\kestrelforge";
  ASSERT_EQ(longForm.size(), 2047u);
  Processes().SetLongPath("C:\\Short", longForm);
  EXPECT_EQ(Clean("C:\\Short"), "");
}

TEST_F(PathEnvironment, ALongFormBeyondItsBufferLeavesTheLastOne)
{
  Processes().SetLongPath("C:\\Short", std::string(2028, 'x') + "norvane\\kestrelforge");
  EXPECT_EQ(Clean("C:\\Short;C:\\A"), "c:\\short;c:\\a;");
}

TEST_F(PathEnvironment, AnElementOf2047CharactersIsKept)
{
  const std::string element(2047, 'a');
  EXPECT_EQ(Clean(element), element + ";");
  EXPECT_EQ(Clean("C:\\A;" + element + ";C:\\B"), "c:\\a;" + element + ";c:\\b;");
}

TEST_F(PathEnvironmentDeathTest, AnElementOf2048CharactersEndsTheProcess)
{
  for (const char* behind : {"", ";", ";C:\\A"}) {
    SetPath("C:\\A;" + std::string(2048, 'x') + behind);
    EXPECT_EXIT(UpdatePathEnvironment(), EndedAbnormally, OnlyTheEnd);
  }
}

TEST_F(PathEnvironmentDeathTest, AnOverlongElementEndsTheProcessEvenIfItWouldBeDropped)
{
  SetPath("C:\\Norvane\\Kestrelforge\\" + std::string(2048, 'x'));
  EXPECT_EXIT(UpdatePathEnvironment(), EndedAbnormally, OnlyTheEnd);
}

TEST_F(PathEnvironmentDeathTest, AKeptListThatTheLastSeparatorMakesTooLongEndsTheProcess)
{
  const std::string list = LongElements(16);
  ASSERT_EQ(list.size(), 32767u);
  EXPECT_EXIT(Clean(list), EndedAbnormally, OnlyTheEnd);
}

TEST_F(PathEnvironmentDeathTest, AnAddPathWithoutRoomForItsSeparatorEndsTheProcess)
{
  SetPath(".");
  SetAddPath(std::string(32767, 'x'));
  EXPECT_EXIT(UpdatePathEnvironment(), EndedAbnormally, OnlyTheEnd);
}

TEST_F(PathEnvironmentDeathTest, AnAddPathThatFillsTheBufferWithoutATerminatorEndsTheProcess)
{
  SetPath("C:\\Windows");
  for (const char last : {'x', ';'}) {
    SetRawAddPath(REG_SZ, TextBytes(std::string(32767, 'x') + last));
    EXPECT_EXIT(UpdatePathEnvironment(), EndedAbnormally, OnlyTheEnd);
  }
}

TEST_F(PathEnvironmentDeathTest, AComposedPathBeyondTheLimitEndsTheProcess)
{
  // "c:\a;" has five characters.
  SetPath("C:\\A");
  SetAddPath(std::string(32762, 'x'));
  EXPECT_EXIT(UpdatePathEnvironment(), EndedAbnormally, OnlyTheEnd);
  SetAddPath(std::string(32761, 'x'));
  EXPECT_EQ(Update(), std::string(32761, 'x') + ";c:\\a;");
}

TEST_F(PathEnvironmentDeathTest, EveryCheckedCallThatFailsEndsTheProcess)
{
  struct CheckedCall
  {
    const char* function;
    int n;
  };
  const CheckedCall calls[] = {{"_wcslwr_s", 1}, {"wcsncpy_s", 1}, {"wcscat_s", 1},
                               {"wcscat_s", 2},  {"wcscat_s", 3},  {"wcscat_s", 4}};
  SetPath("C:\\Windows");
  SetAddPath("X:\\A");
  for (const CheckedCall& call : calls) {
    EXPECT_EXIT((FailCall(call.function, call.n, ERANGE), UpdatePathEnvironment()), EndedAbnormally,
                OnlyTheEnd)
        << call.function << " " << call.n;
  }
}
