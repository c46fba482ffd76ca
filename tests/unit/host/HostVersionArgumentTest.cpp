#include "host/HostVersionArgument.h"

#include "tests/unit/host/HostMachine.h"

namespace {

const std::string Base = "Software\\Autodesk\\";

class HostVersionArgument : public HostMachine
{
protected:
  static SelectedHost Resolve(const std::string& arguments, bool is64BitBefore = false)
  {
    QulString commandLine = Qul(arguments);
    QulString keyPath;
    QulString executable;
    bool is64Bit = is64BitBefore;
    const HostRelease release = ResolveRequestedHost(commandLine, keyPath, executable, is64Bit);
    return {release, Utf8(commandLine), Utf8(keyPath), Utf8(executable), is64Bit};
  }

  // A host of the user, current or not, that is installed in C:\Host.
  void AddHost(const std::string& subkey)
  {
    SetText(UserHosts(), "", "CurProd", "AutoCAD");
    AddKey(UserHosts(), "AutoCAD\\" + subkey);
    Install(RegistryView::Native, "AutoCAD\\" + subkey, "C:\\Host");
  }

  // The keys of a demand for version and product that were tried below the product AutoCAD.
  Lines ExactKeysTried(const std::string& value)
  {
    ClearDiary();
    (void)Resolve("/AcadVer \"" + value + "\"");
    const std::string start = ", \"AutoCAD";
    Lines keys;
    for (const std::string& line : DiaryOf({"RegOpenKeyExW"})) {
      const size_t begin = line.find(start);
      if (begin != std::string::npos)
        keys.push_back(line.substr(begin + 3, line.find('"', begin + 3) - begin - 3));
    }
    // The last name is tried once more when the names have come to their end.
    if (!keys.empty())
      keys.pop_back();
    return keys;
  }
};

}  // namespace

// What is taken out of the command line.

TEST_F(HostVersionArgument, TheSwitchItsValueAndOneBlankBehindItLeaveTheLine)
{
  const struct
  {
    const char* before;
    const char* after;
  } rows[] = {{"file.dwg /AcadVer 17 /b x", "file.dwg /b x"},
              {"/AcadVer 17", ""},
              {"x /AcadVer 17", "x "},
              {"/AcadVer 17 ", ""},
              {"/AcadVer 17  x ", " x "},
              {"/AcadVer     17 x", "x"},
              {"/AcadVer17 x", "x"},
              {"a/AcadVer 17 x", "ax"},
              {"\"a /AcadVer 17\" x", "\"a x"},
              {R"(/AcadVer "R17.1\ABCD-0001" x)", "x"},
              {R"(y /AcadVer "R17 My Host" x)", "y x"},
              {R"(/AcadVer "17")", ""},
              {R"(/AcadVer "17"abc)", "bc"},
              {R"(/AcadVer "17" "a b")", R"("a b")"},
              {"/AcadVer 17\tx y", "y"},
              {"\xC3\x9C.dwg /AcadVer 17 \xC3\x84", "\xC3\x9C.dwg \xC3\x84"}};
  for (const auto& row : rows) {
    const SelectedHost host = Resolve(row.before);
    EXPECT_EQ(host.commandLine, row.after) << row.before;
    EXPECT_EQ(host.release, 2) << row.before;
  }
}

TEST_F(HostVersionArgument, OnlyTheFirstSwitchIsTakenOut)
{
  const SelectedHost host = Resolve("x /AcadVer 17 /AcadVer 18 y");
  EXPECT_EQ(host.commandLine, "x /AcadVer 18 y");
  EXPECT_EQ(host.release, 2);
}

TEST_F(HostVersionArgument, ATabBelongsToTheValueThatItStandsBefore)
{
  AddHost("R17.1\\ABCD-0001");
  const SelectedHost host = Resolve("/AcadVer\t17 x");
  EXPECT_EQ(host.commandLine, "x");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.executable, "");
}

TEST_F(HostVersionArgument, ATabAloneEndsAtTheBlankAndIsNoVersion)
{
  const SelectedHost host = Resolve("/AcadVer\t 17 x");
  EXPECT_EQ(host.commandLine, "17 x");
  EXPECT_EQ(host.release, 3);
}

TEST_F(HostVersionArgument, WithoutAValueOrWithAnOpenQuoteTheLineStaysAndTheReleaseIs3)
{
  AddHost("R17.1\\ABCD-0001");
  for (const char* arguments : {"/AcadVer", "x /AcadVer", "/AcadVer ", "/AcadVer    ",
                                R"(/AcadVer "R17.1)", R"(/AcadVer ")", R"(x /AcadVer "17 y)"}) {
    const SelectedHost host = Resolve(arguments);
    EXPECT_EQ(host.commandLine, arguments);
    EXPECT_EQ(host.release, 3) << arguments;
    EXPECT_EQ(host.executable, "") << arguments;
    EXPECT_EQ(host.keyPath, "") << arguments;
  }
  EXPECT_EQ(Diary(), Lines());
}

TEST_F(HostVersionArgument, OfOneCharacterOrNoneIsNeverReadAndLeavesTheLine)
{
  AddHost("R9.1\\ABCD-0001");
  for (const char* value : {"9", "x", R"("9")", R"("")"}) {
    const SelectedHost host = Resolve(std::string("y /AcadVer ") + value + " x");
    EXPECT_EQ(host.commandLine, "y x") << value;
    EXPECT_EQ(host.release, 3) << value;
    EXPECT_EQ(host.executable, "") << value;
  }
  EXPECT_EQ(Diary(), Lines());
}

TEST_F(HostVersionArgument, WithoutADigitLeavesTheLineAndTheReleaseIs3)
{
  AddHost("abc\\ABCD-0001");
  for (const char* value : {"abc", "R.x", R"("abc\ABCD")"}) {
    const SelectedHost host = Resolve(std::string("/AcadVer ") + value + " x");
    EXPECT_EQ(host.commandLine, "x") << value;
    EXPECT_EQ(host.release, 3) << value;
    EXPECT_EQ(host.executable, "") << value;
  }
  EXPECT_EQ(Diary(), Lines());
}

TEST_F(HostVersionArgument, WithoutAMajorPartLeavesTheLineAndTheReleaseIs3)
{
  AddHost("R17.1\\ABCD-0001");
  for (const char* value : {".17", R"(\17)", "/17", R"(.17\ABCD-0001)"}) {
    const SelectedHost host = Resolve(std::string("/AcadVer ") + value + " x");
    EXPECT_EQ(host.commandLine, "x") << value;
    EXPECT_EQ(host.release, 3) << value;
    EXPECT_EQ(host.executable, "") << value;
  }
  EXPECT_EQ(Diary(), Lines());
}

TEST_F(HostVersionArgument, AlwaysGivesTheFlagAValue)
{
  EXPECT_FALSE(Resolve("/AcadVer", true).is64Bit);
  EXPECT_FALSE(Resolve("/AcadVer 9", true).is64Bit);
  EXPECT_FALSE(Resolve("/AcadVer 17", true).is64Bit);
  AddHost("R17.1\\ABCD-0001");
  EXPECT_TRUE(Resolve("/AcadVer 17").is64Bit);
}

// The release.

TEST_F(HostVersionArgument, TheDigitsInTheMajorPartGiveTheRelease)
{
  const struct
  {
    const char* value;
    HostRelease release;
  } rows[] = {{"15", 0},    {"16", 1},     {"17", 2},    {"18", 3},        {"R15.0", 0},
              {"R16.2", 1}, {"R17.1", 2},  {"R18.0", 3}, {"2017", 2},      {"1518", 0},
              {"1815", 0},  {"1716", 1},   {"1817", 2},  {"x18x", 3},      {"14", -1},
              {"19", -1},   {"R1.17", -1}, {"9.18", -1}, {R"(14\17)", -1}, {"14/16", -1}};
  for (const auto& row : rows)
    EXPECT_EQ(Resolve(std::string("/AcadVer ") + row.value).release, row.release) << row.value;
}

TEST_F(HostVersionArgument, OfVersion15AloneIsLookedUpOnTheMachineIn32Bits)
{
  const std::string user = R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, )";
  const std::string machine = R"(RegOpenKeyExW(HKLM, "Software\Autodesk\", 0, )";
  const struct
  {
    const char* value;
    std::string firstOpen;
  } rows[] = {{"15", machine + "0x201) = 2"}, {R"(R15.0\ABCD-0001)", machine + "0x208) = 2"},
              {"16", user + "0x1) = 2"},      {"17", user + "0x1) = 2"},
              {"18", user + "0x1) = 2"},      {R"(R18.0\ABCD-0001)", user + "0x8) = 2"},
              {"14", user + "0x1) = 2"},      {R"(R14.0\ABCD-0001)", user + "0x8) = 2"}};
  for (const auto& row : rows) {
    ClearDiary();
    (void)Resolve(std::string("/AcadVer ") + row.value);
    EXPECT_EQ(Diary().at(0), row.firstOpen) << row.value;
  }
}

TEST_F(HostVersionArgument, OfTwoReleasesInTheMajorPartTheOlderCounts)
{
  const char* const digits[] = {"15", "16", "17", "18"};
  for (HostRelease older = 0; older < 4; ++older) {
    for (HostRelease newer = older; newer < 4; ++newer) {
      const std::string value = std::string(digits[newer]) + "x" + digits[older];
      EXPECT_EQ(Resolve("/AcadVer " + value).release, older) << value;
    }
  }
}

// The parts of the value.

TEST_F(HostVersionArgument, EachFormOfTheValueTakesItsSearch)
{
  for (const char* subkey : {"R17.0\\AAAA-0001", "R17.1\\BBBB-0001", "R17.1\\ABCD-0001"})
    AddHost(subkey);
  // A backslash at the end tells the search by version.
  const struct
  {
    const char* value;
    const char* keyPath;
    const char* executable;
  } rows[] = {{"17", R"(AutoCAD\R17.0\AAAA-0001\)", "AAAA.exe"},
              {"R17", R"(AutoCAD\R17.0\AAAA-0001\)", "AAAA.exe"},
              {"R17.1", R"(AutoCAD\R17.1\BBBB-0001\)", "BBBB.exe"},
              {"17.1", R"(AutoCAD\R17.1\BBBB-0001\)", "BBBB.exe"},
              {"R17.", R"(AutoCAD\R17.0\AAAA-0001\)", "AAAA.exe"},
              {R"(R17\)", R"(AutoCAD\R17.0\AAAA-0001\)", "AAAA.exe"},
              {R"(R17.1\)", R"(AutoCAD\R17.1\BBBB-0001\)", "BBBB.exe"},
              {R"(R17\ABCD-0001)", R"(AutoCAD\R17.1\ABCD-0001\)", "ABCD.exe"},
              {R"(R17/ABCD)", R"(AutoCAD\R17.1\ABCD-0001\)", "ABCD.exe"},
              {R"(R17.\ABCD)", R"(AutoCAD\R17.1\ABCD-0001\)", "ABCD.exe"},
              {R"(R17\\ABCD)", R"(AutoCAD\R17.1\ABCD-0001\)", "ABCD.exe"},
              {R"(R17.1\ABCD-0001)", R"(AutoCAD\R17.1\ABCD-0001)", "ABCD.exe"},
              {"R17/1/ABCD-0001", R"(AutoCAD\R17.1\ABCD-0001)", "ABCD.exe"},
              {R"(R17\1\ABCD-0001)", R"(AutoCAD\R17.1\ABCD-0001)", "ABCD.exe"},
              {R"(R17\1/ABCD-0001)", R"(AutoCAD\R17.1\ABCD-0001)", "ABCD.exe"},
              {"R17.1/ABCD-0001", R"(AutoCAD\R17.1\ABCD-0001)", "ABCD.exe"}};
  for (const auto& row : rows) {
    const SelectedHost host = Resolve(std::string("/AcadVer ") + row.value);
    EXPECT_EQ(host.keyPath, Base + row.keyPath) << row.value;
    EXPECT_EQ(host.executable, std::string("C:\\Host\\") + row.executable) << row.value;
  }
}

TEST_F(HostVersionArgument, TheFirstDotThenBackslashThenSlashEndsTheMajorPart)
{
  AddKey(UserHosts(), "AutoCAD");
  const struct
  {
    const char* value;
    const char* key;
  } rows[] = {{R"(R17.1\ABCD-0001)", R"(AutoCAD\R17.1\ABCD-0001)"},
              {"R17/1/ABCD-0001", R"(AutoCAD\R17.1\ABCD-0001)"},
              {R"(R17.1.2\ABCD)", R"(AutoCAD\R17.1.2\ABCD)"},
              {R"(R17.1\AB.CD)", R"(AutoCAD\R17.1\AB.CD)"},
              {R"(R17\1\AB.CD\E)", R"(AutoCAD\R17\1\AB.CD\E)"},
              {R"(R17.1\AB\CD)", R"(AutoCAD\R17.1\AB\CD)"},
              {R"(R17.1\AB/CD)", R"(AutoCAD\R17.1\AB/CD)"},
              {R"(R17.1/AB\CD)", R"(AutoCAD\R17.1/AB\CD)"},
              {R"(R17/1\2\AB)", R"(AutoCAD\R17/1.2\AB)"},
              {"R17 x.1\\My Host", R"(AutoCAD\R17 x.1\My Host)"}};
  for (const auto& row : rows)
    EXPECT_EQ(ExactKeysTried(row.value), Lines{row.key}) << row.value;
}

TEST_F(HostVersionArgument, WithADotBehindABackslashHasNoProduct)
{
  AddHost("R17.1\\ABCD-0001");
  const SelectedHost host = Resolve("/AcadVer R17\\AB.CD");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.executable, "");
  EXPECT_EQ(ExactKeysTried("R17\\AB.CD"), Lines());
}

TEST_F(HostVersionArgument, TheFileNameIsTheFirstFourCharactersOfTheProductWithoutRegardToADash)
{
  const struct
  {
    const char* subkey;
    const char* executable;
  } rows[] = {{"ABCD-0001", "C:\\Host\\ABCD.exe"},
              {"AB-1", "C:\\Host\\AB-1.exe"},
              {"ABCDEF-1", "C:\\Host\\ABCD.exe"},
              {"ABC", "C:\\Host\\ABC.exe"}};
  for (const auto& row : rows) {
    AddHost(std::string("R17.1\\") + row.subkey);
    EXPECT_EQ(Resolve(std::string("/AcadVer R17.1\\") + row.subkey).executable, row.executable);
    EXPECT_EQ(Resolve("/AcadVer 17").executable, row.executable);
    Registry().RemoveKey(HKEY_CURRENT_USER, RegistryView::Native, Base + "AutoCAD");
  }
}

TEST_F(HostVersionArgument, TheFileNameIsThatOfTheSubkeyFoundAndNotOfThePieceAskedFor)
{
  AddHost("R17.1\\ABCD-0001");
  EXPECT_EQ(Resolve("/AcadVer 17\\0001").executable, "C:\\Host\\ABCD.exe");
}

// Searches that find no host.

TEST_F(HostVersionArgument, ThatIsNotServedIsLookedForAllTheSame)
{
  const SelectedHost missing = Resolve("x /AcadVer 14 y");
  EXPECT_EQ(missing.release, HostReleaseUnknown);
  EXPECT_EQ(missing.commandLine, "x y");
  EXPECT_EQ(missing.executable, "");
  AddHost("R14.0\\ABCD-0001");
  const SelectedHost found = Resolve("x /AcadVer 14 y");
  EXPECT_EQ(found.release, HostReleaseUnknown);
  EXPECT_EQ(found.commandLine, "x y");
  EXPECT_EQ(found.executable, "C:\\Host\\ABCD.exe");
}

TEST_F(HostVersionArgument, WithoutAHitByVersionHasNoPathAndLocatesNothing)
{
  AddHost("R17.1\\ABCD-0001");
  const SelectedHost host = Resolve("/AcadVer 16\\ABCD x");
  EXPECT_EQ(host.release, 1);
  EXPECT_EQ(host.commandLine, "x");
  EXPECT_EQ(host.keyPath, "");
  EXPECT_EQ(host.executable, "");
  EXPECT_FALSE(host.is64Bit);
  for (const std::string& line : DiaryOf({"RegOpenKeyExW"}))
    EXPECT_EQ(line.find("HKLM"), std::string::npos) << line;
}

TEST_F(HostVersionArgument, WithoutTheExactKeyLocatesTheHostInTheBaseOfAll)
{
  AddHost("R17.1\\ABCD-0001");
  const SelectedHost host = Resolve("/AcadVer R16.1\\ABCD-0001 x");
  EXPECT_EQ(host.release, 1);
  EXPECT_EQ(host.commandLine, "x");
  EXPECT_EQ(host.keyPath, Base);
  EXPECT_EQ(host.executable, "\\ABCD.exe");
  EXPECT_TRUE(host.is64Bit);
  const Lines diary = Diary();
  ASSERT_GE(diary.size(), 3u);
  EXPECT_EQ(diary[diary.size() - 3], R"(RegOpenKeyExW(HKLM, "Software\Autodesk\", 0, 0x1) = 0 #2)");
}

TEST_F(HostVersionArgument, WithoutTheExactKeyTheBaseIn32BitsLeavesTheFlagFalse)
{
  AddKey(MachineHosts(), "AutoCAD");
  const SelectedHost host = Resolve("/AcadVer R18.1\\WXYZ-0001 x");
  EXPECT_EQ(host.release, 3);
  EXPECT_EQ(host.executable, "\\WXYZ.exe");
  EXPECT_FALSE(host.is64Bit);
}

TEST_F(HostVersionArgument, WithoutTheExactKeyAndWithoutTheBaseFindsNoHost)
{
  AddKey(UserHosts(), "AutoCAD");
  const SelectedHost host = Resolve("/AcadVer R17.1\\ABCD-0001 x");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.keyPath, Base);
  EXPECT_EQ(host.executable, "");
  EXPECT_FALSE(host.is64Bit);
}

TEST_F(HostVersionArgument, OfAnExactKeyThatTheMachineLacksFindsNoHost)
{
  AddKey(UserHosts(), "AutoCAD\\R17.1\\ABCD-0001");
  const SelectedHost host = Resolve("/AcadVer R17.1\\ABCD-0001 x");
  EXPECT_EQ(host.keyPath, Base + "AutoCAD\\R17.1\\ABCD-0001");
  EXPECT_EQ(host.executable, "");
}

TEST_F(HostVersionArgument, OfVersion15FindsTheHostOfTheMachine)
{
  SetText(MachineHosts(), "", "CurProd", "AutoCAD 2000");
  Install(RegistryView::Wow32, "AutoCAD 2000\\R15.0\\WXYZ-0001", "C:\\Old");
  const SelectedHost byVersion = Resolve("/AcadVer 15");
  EXPECT_EQ(byVersion.release, 0);
  EXPECT_EQ(byVersion.keyPath, Base + "AutoCAD 2000\\R15.0\\WXYZ-0001\\");
  EXPECT_EQ(byVersion.executable, "C:\\Old\\WXYZ.exe");
  const SelectedHost exact = Resolve("/AcadVer R15.0\\WXYZ-0001");
  EXPECT_EQ(exact.keyPath, Base + "AutoCAD 2000\\R15.0\\WXYZ-0001");
  EXPECT_EQ(exact.executable, "C:\\Old\\WXYZ.exe");
  EXPECT_FALSE(exact.is64Bit);
}

TEST_F(HostVersionArgument, ByVersionLooksUnderTheCurrentProductAlone)
{
  AddHost("R17.1\\ABCD-0001");
  AddKey(UserHosts(), "Inventor\\R18.0\\WXYZ-0001");
  EXPECT_EQ(Resolve("/AcadVer 18").keyPath, "");
  EXPECT_EQ(Resolve("/AcadVer R18.0\\WXYZ-0001").keyPath, Base + "Inventor\\R18.0\\WXYZ-0001");
}
