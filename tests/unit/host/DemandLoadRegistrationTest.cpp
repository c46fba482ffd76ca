#include "host/DemandLoadRegistration.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/ShellDouble.h"
#include "tests/doubles/Text.h"

#include <gtest/gtest.h>

#include <errno.h>

#include <set>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int CommonFiles64 = 43;

const auto EndedAbnormally = testing::ExitedWithCode(3);
const char* const OnlyTheEnd = "^TerminateProcess 0xC0000417\n$";

const char* const HostPath = "Software\\Autodesk\\AutoCAD\\R17.1\\ABCD-0001";
const char* const Marker = "\\QuillStartupLoader";

const char* const DemandText = "KF component in charge of loading the proper KF version on demand";

// A value below "Applications" as a 64-bit host of release 2 gets it. A LOADER is given without its
// folder.
struct Entry
{
  const char* key;
  const char* name;
  const char* text;
  uint32_t number;  // if there is no text
};

// In the order of writing.
const Entry Entries[] = {
    {"\\QuillStartupLoader", "DESCRIPTION",
     "KF component in charge of loading or unloading the proper KF version", 0},
    {"\\QuillStartupLoader", "LOADCTRLS", nullptr, 2},
    {"\\QuillStartupLoader", "LOADER", "QuillStartupLoader8x64.arx", 0},
    {"\\Tarnwheels", "DESCRIPTION", DemandText, 0},
    {"\\Kestrelforge", "DESCRIPTION", DemandText, 0},
    {"\\Tarnwheels", "LOADCTRLS", nullptr, 13},
    {"\\Kestrelforge", "LOADCTRLS", nullptr, 13},
    {"\\Tarnwheels", "LOADER", "KFDemandLoadHelper8x64.arx", 0},
    {"\\Kestrelforge", "LOADER", "KFDemandLoadHelper8x64.arx", 0},
    {"\\QuillProfileDesigner", "DESCRIPTION",
     "KF component in charge of loading the proper Profile Designer version on demand", 0},
    {"\\QuillProfileDesigner", "LOADCTRLS", nullptr, 13},
    {"\\QuillProfileDesigner", "LOADER", "ProfDesignDemandLoadHelper8x64.arx", 0},
    {"\\QuillProfileDesigner\\Commands", "QulM4ProfileDesigner", "QulM4ProfileDesigner", 0},
    {"\\QuillProfileDesigner\\Commands", "TARN_AddCoord", "TARN_AddCoord", 0},
    {"\\QuillProfileDesigner\\Commands", "TARN_addProfiles", "TARN_addProfiles", 0},
    {"\\QuillProfileDesigner\\Commands", "TARN_addSelectedProfiles", "TARN_addSelectedProfiles", 0},
    {"\\QuillProfileDesigner\\Commands", "TARN_NUMDIVS", "TARN_NUMDIVS", 0},
    {"\\QuillProfileDesigner\\Commands", "TARN_userprofmenu", "TARN_userprofmenu", 0}};
constexpr size_t EntryCount = 18;
static_assert(sizeof(Entries) / sizeof(Entries[0]) == EntryCount);

// The text that is written for an entry.
std::string TextOf(const Entry& entry)
{
  const bool isFile = std::string(entry.name) == "LOADER";
  return (isFile ? "C:\\Program Files\\Common Files\\Norvane\\" : "") + std::string(entry.text);
}

std::string DataOf(const Entry& entry)
{
  if (entry.text == nullptr)
    return "REG_DWORD, " + std::to_string(entry.number) + ", 4";
  return "REG_SZ, \"" + TextOf(entry) + "\", " + std::to_string(2 * TextOf(entry).size());
}

QulString Handle(const std::string& utf8)
{
  return QulString(WideText(utf8).c_str());
}

class DemandLoadRegistration : public PlatformTest
{
protected:
  using Lines = std::vector<std::string>;

  static void AddHost() { AddKey(HostPath); }
  static void AddKey(const std::string& path)
  {
    Registry().AddKey(HKEY_CURRENT_USER, RegistryView::Native, path);
  }
  static bool HasKey(const std::string& path)
  {
    return Registry().HasKey(HKEY_CURRENT_USER, RegistryView::Native, path);
  }
  static RegistryValue Value(const std::string& path, const std::string& name)
  {
    return Registry().Value(HKEY_CURRENT_USER, RegistryView::Native, path, name);
  }
  static std::string Applications() { return std::string(HostPath) + "\\Applications"; }
  static std::string LoaderOf(const std::string& key)
  {
    return Value(Applications() + key, "LOADER").Text();
  }

  // For a 64-bit host of release 2, as all that doesn't say otherwise.
  static void Register(const std::string& hostPath = std::string(HostPath) + "\\")
  {
    RegisterDemandLoad(Handle(hostPath), 2, true);
  }
  static int32_t Write() { return WriteDemandLoadEntries(Handle(Applications()), 2, true); }

  static Lines Writes() { return DiaryOf({"RegCreateKeyExW", "RegSetValueExW"}); }

  static void ExpectEntry(const std::string& applications, const Entry& entry)
  {
    const RegistryValue value = Value(applications + entry.key, entry.name);
    ASSERT_TRUE(value.exists) << entry.key << " " << entry.name;
    if (entry.text == nullptr) {
      EXPECT_EQ(value.type, REG_DWORD) << entry.key;
      EXPECT_EQ(value.bytes, (Bytes{static_cast<unsigned char>(entry.number), 0, 0, 0}));
    } else {
      EXPECT_EQ(value.type, REG_SZ) << entry.key << " " << entry.name;
      EXPECT_EQ(value.bytes, TextBytes(TextOf(entry))) << entry.key << " " << entry.name;
    }
  }

  static void ExpectAllEntries(const std::string& applications)
  {
    for (const Entry& entry : Entries)
      ExpectEntry(applications, entry);
  }

  // The calls of one entry; handles are counted from the given number on.
  static Lines CallsOf(const Entry& entry, bool isNew, int handle)
  {
    const std::string path = "(HKCU, \"" + Applications() + entry.key + "\", 0, ";
    const std::string number = "#" + std::to_string(handle);
    Lines lines{"RegOpenKeyExW" + path + "0x20006) = " + (isNew ? "2" : "0 " + number)};
    if (isNew) {
      lines.push_back("RegCreateKeyExW" + path + "class null, 0, 0xF003F, null, null) = 0 " +
                      number);
    }
    lines.push_back("RegSetValueExW(" + number + ", \"" + entry.name + "\", 0, " + DataOf(entry) +
                    ") = 0");
    lines.push_back("RegCloseKey(" + number + ") = 0");
    return lines;
  }
};

using DemandLoadRegistrationDeathTest = DemandLoadRegistration;

}  // namespace

TEST_F(DemandLoadRegistration, AFirstRunWritesAllEntries)
{
  AddHost();
  Register();
  ExpectAllEntries(Applications());
  for (const char* key : {"QuillStartupLoader", "Tarnwheels", "Kestrelforge"}) {
    EXPECT_EQ(
        Registry().ValueNames(HKEY_CURRENT_USER, RegistryView::Native, Applications() + "\\" + key),
        (Lines{"DESCRIPTION", "LOADCTRLS", "LOADER"}));
  }
  EXPECT_EQ(Registry().SubkeyNames(HKEY_CURRENT_USER, RegistryView::Native, Applications()),
            (Lines{"QuillStartupLoader", "Tarnwheels", "Kestrelforge", "QuillProfileDesigner"}));
  EXPECT_EQ(Writes().size(), EntryCount + 5);
}

TEST_F(DemandLoadRegistration, TheEntriesAreWrittenOneByOneInOrder)
{
  EXPECT_EQ(Write(), 1);
  Lines expected{"SHGetSpecialFolderPathW(null, 43, 0) = 1"};
  std::set<std::string> known;
  int handle = 0;
  for (const Entry& entry : Entries) {
    const Lines calls = CallsOf(entry, known.insert(entry.key).second, ++handle);
    expected.insert(expected.end(), calls.begin(), calls.end());
  }
  EXPECT_EQ(Diary(), expected);
  EXPECT_EQ(Registry().OpenHandleCount(), 0);
}

TEST_F(DemandLoadRegistration, EntriesThatExistAreWrittenOver)
{
  ASSERT_EQ(Write(), 1);
  for (const Entry& entry : Entries) {
    Registry().SetRaw(HKEY_CURRENT_USER, RegistryView::Native, Applications() + entry.key,
                      entry.name, REG_BINARY, Bytes(3, 7));
  }
  ClearDiary();
  EXPECT_EQ(Write(), 1);
  ExpectAllEntries(Applications());
  EXPECT_EQ(DiaryOf({"RegCreateKeyExW"}), Lines());
}

TEST_F(DemandLoadRegistration, ASecondRunWritesNothing)
{
  AddHost();
  Register();
  ClearDiary();
  Register();
  EXPECT_EQ(Writes(), Lines());
  RegisterDemandLoad(Handle(std::string(HostPath) + "\\"), 3, false);
  EXPECT_EQ(Writes(), Lines());
  ExpectAllEntries(Applications());
}

TEST_F(DemandLoadRegistration, WithoutItsMarkerEverythingIsWrittenAgain)
{
  AddHost();
  Register();
  Registry().RemoveKey(HKEY_CURRENT_USER, RegistryView::Native, Applications() + Marker);
  Registry().SetText(HKEY_CURRENT_USER, RegistryView::Native, Applications() + "\\Tarnwheels",
                     "LOADER", "old");
  ClearDiary();
  Register();
  EXPECT_EQ(DiaryOf({"RegSetValueExW"}).size(), EntryCount);
  ExpectAllEntries(Applications());
}

TEST_F(DemandLoadRegistration, AHostPathWithoutABackslashIsRegisteredBesideItsKey)
{
  AddHost();
  Register(HostPath);
  ExpectAllEntries(std::string(HostPath) + "Applications");
  EXPECT_FALSE(HasKey(Applications()));
}

TEST_F(DemandLoadRegistration, TheMarkerBesideTheKeyIsFoundToo)
{
  AddHost();
  Register(HostPath);
  ClearDiary();
  Register(HostPath);
  EXPECT_EQ(Writes(), Lines());
}

TEST_F(DemandLoadRegistration, TheTwoDemandLoadHelpersAreRegisteredAlike)
{
  for (const HostRelease release : {0, 1, 2, 3}) {
    ResetPlatform();
    ASSERT_EQ(WriteDemandLoadEntries(Handle(Applications()), release, false), 1);
    for (const char* name : {"DESCRIPTION", "LOADCTRLS", "LOADER"}) {
      const RegistryValue tarnwheels = Value(Applications() + "\\Tarnwheels", name);
      const RegistryValue kestrelforge = Value(Applications() + "\\Kestrelforge", name);
      EXPECT_TRUE(tarnwheels.exists) << name;
      EXPECT_EQ(tarnwheels.type, kestrelforge.type) << name;
      EXPECT_EQ(tarnwheels.bytes, kestrelforge.bytes) << name;
    }
  }
}

TEST_F(DemandLoadRegistration, LoadCtrlsIsANumberOfFourBytes)
{
  ASSERT_EQ(Write(), 1);
  const RegistryValue startup = Value(Applications() + Marker, "LOADCTRLS");
  EXPECT_EQ(startup.type, REG_DWORD);
  EXPECT_EQ(startup.bytes, (Bytes{2, 0, 0, 0}));
  for (const char* key : {"\\Tarnwheels", "\\Kestrelforge", "\\QuillProfileDesigner"})
    EXPECT_EQ(Value(Applications() + key, "LOADCTRLS").bytes, (Bytes{13, 0, 0, 0})) << key;
}

TEST_F(DemandLoadRegistration, ReleaseAndWidthChooseFilesAndFolder)
{
  const char* const parts[] = {"6x", "7x", "8x", "9x"};
  for (const HostRelease release : {0, 1, 2, 3}) {
    for (const bool is64Bit : {false, true}) {
      ASSERT_EQ(WriteDemandLoadEntries(Handle(Applications()), release, is64Bit), 1);
      const std::string folder = is64Bit ? "C:\\Program Files\\Common Files\\Norvane\\"
                                         : "C:\\Program Files (x86)\\Common Files\\Norvane\\";
      const std::string end = std::string(parts[release]) + (is64Bit ? "64.arx" : "86.arx");
      EXPECT_EQ(LoaderOf("\\QuillStartupLoader"), folder + "QuillStartupLoader" + end);
      EXPECT_EQ(LoaderOf("\\Tarnwheels"), folder + "KFDemandLoadHelper" + end);
      EXPECT_EQ(LoaderOf("\\Kestrelforge"), folder + "KFDemandLoadHelper" + end);
      EXPECT_EQ(LoaderOf("\\QuillProfileDesigner"), folder + "ProfDesignDemandLoadHelper" + end);
    }
  }
}

TEST_F(DemandLoadRegistration, TheFolderIsAskedForByTheHostsWidth)
{
  ASSERT_EQ(WriteDemandLoadEntries(Handle(Applications()), 0, false), 1);
  ASSERT_EQ(WriteDemandLoadEntries(Handle(Applications()), 0, true), 1);
  EXPECT_EQ(DiaryOf({"SHGetSpecialFolderPathW"}),
            (Lines{"SHGetSpecialFolderPathW(null, 44, 0) = 1",
                   "SHGetSpecialFolderPathW(null, 43, 0) = 1"}));
}

TEST_F(DemandLoadRegistration, AFolderThatIsNotFoundIsNotLookedAt)
{
  ShellFolders().RemoveFolder(CommonFiles64);
  EXPECT_EQ(Write(), 1);
  EXPECT_EQ(LoaderOf(Marker), "\\Norvane\\QuillStartupLoader8x64.arx");
  EXPECT_EQ(LoaderOf("\\QuillProfileDesigner"), "\\Norvane\\ProfDesignDemandLoadHelper8x64.arx");
}

TEST_F(DemandLoadRegistration, AnUnknownReleaseGetsNoEntries)
{
  AddHost();
  EXPECT_EQ(WriteDemandLoadEntries(Handle(Applications()), -1, true), 0);
  EXPECT_EQ(Diary(), Lines());
  RegisterDemandLoad(Handle(std::string(HostPath) + "\\"), -1, true);
  EXPECT_EQ(Writes(), Lines());
  EXPECT_FALSE(HasKey(Applications()));
}

TEST_F(DemandLoadRegistration, AHostWithoutAKeyOfTheUserGetsNoEntries)
{
  Registry().AddKey(HKEY_LOCAL_MACHINE, RegistryView::Native, HostPath);
  Register();
  EXPECT_EQ(Diary(),
            Lines{"RegOpenKeyExW(HKCU, \"" + std::string(HostPath) + "\\\", 0, 0xF003F) = 2"});
  EXPECT_FALSE(HasKey("Software\\Autodesk"));
}

TEST_F(DemandLoadRegistration, AHostKeyWithoutFullAccessGetsNoEntries)
{
  for (const int right : {WRITE_DAC, DELETE, KEY_SET_VALUE, KEY_CREATE_LINK}) {
    ResetPlatform();
    AddHost();
    Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, HostPath,
                          static_cast<REGSAM>(right));
    Register();
    EXPECT_EQ(Diary().size(), 1u) << right;
    EXPECT_FALSE(HasKey(Applications())) << right;
  }
}

TEST_F(DemandLoadRegistration, TheHostsKeyStaysOpenAndIsNotUsedAgain)
{
  AddHost();
  AddKey(Applications() + Marker);
  Register();
  const std::string path = HostPath;
  EXPECT_EQ(Diary(), (Lines{"RegOpenKeyExW(HKCU, \"" + path + "\\\", 0, 0xF003F) = 0 #1",
                            "RegOpenKeyExW(HKCU, \"" + path +
                                "\\Applications\\QuillStartupLoader\", 0, 0x20019) = 0 #2",
                            "RegCloseKey(#2) = 0"}));
  EXPECT_EQ(Registry().OpenKeyPaths(), Lines{"HKCU\\" + path});
}

TEST_F(DemandLoadRegistration, OnlyTheHostsKeyIsLeftOpenByAFirstRun)
{
  AddHost();
  Register();
  EXPECT_EQ(Registry().OpenKeyPaths(), Lines{"HKCU\\" + std::string(HostPath)});
}

TEST_F(DemandLoadRegistration, TheStartupLoadersKeyAloneIsTheMarker)
{
  for (const char* key : {"\\Tarnwheels", "\\Kestrelforge", "\\QuillProfileDesigner\\Commands"})
    AddKey(Applications() + key);
  EXPECT_FALSE(IsLoaderRegistered(Handle(Applications())));
  AddKey(Applications() + Marker);
  EXPECT_TRUE(IsLoaderRegistered(Handle(Applications())));
  EXPECT_EQ(Registry().OpenHandleCount(), 0);
}

TEST_F(DemandLoadRegistration, AMarkerOfTheMachineDoesNotCount)
{
  Registry().AddKey(HKEY_LOCAL_MACHINE, RegistryView::Native, Applications() + Marker);
  EXPECT_FALSE(IsLoaderRegistered(Handle(Applications())));
}

TEST_F(DemandLoadRegistration, AMarkerThatCanNotBeReadCountsAsMissing)
{
  AddHost();
  AddKey(Applications() + Marker);
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, Applications() + Marker,
                        KEY_ENUMERATE_SUB_KEYS);
  EXPECT_FALSE(IsLoaderRegistered(Handle(Applications())));
  EXPECT_EQ(DiaryOf({"RegCloseKey"}), Lines());
  Register();
  EXPECT_EQ(LoaderOf("\\Tarnwheels"), TextOf(Entries[7]));
}

TEST_F(DemandLoadRegistration, AValueThatCanNotBeWrittenIsMissingAndTheRestIsThere)
{
  for (size_t failed = 0; failed < EntryCount; ++failed) {
    ResetPlatform();
    FailCall("RegSetValueExW", static_cast<int>(failed) + 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(Write(), 1);
    EXPECT_EQ(DiaryOf({"RegSetValueExW"}).size(), EntryCount);
    EXPECT_EQ(Registry().OpenHandleCount(), 0);
    for (size_t i = 0; i < EntryCount; ++i) {
      const Entry& entry = Entries[i];
      EXPECT_EQ(Value(Applications() + entry.key, entry.name).exists, i != failed);
    }
  }
}

TEST_F(DemandLoadRegistration, ALaterRunDoesNotMendAMissingValue)
{
  AddHost();
  FailCall("RegSetValueExW", 8, ERROR_ACCESS_DENIED);
  Register();
  ClearDiary();
  Register();
  EXPECT_EQ(Writes(), Lines());
  EXPECT_FALSE(Value(Applications() + "\\Tarnwheels", "LOADER").exists);
}

TEST_F(DemandLoadRegistration, AKeyThatCanNotBeMadeIsTriedAgainForItsNextValue)
{
  FailCall("RegCreateKeyExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Write(), 1);
  EXPECT_FALSE(Value(Applications() + Marker, "DESCRIPTION").exists);
  EXPECT_TRUE(Value(Applications() + Marker, "LOADCTRLS").exists);
  EXPECT_EQ(DiaryOf({"RegCreateKeyExW"}).size(), 6u);
}

TEST_F(DemandLoadRegistrationDeathTest, AFilePathOf2048CharactersEndsTheProcess)
{
  // The longest one has 43 characters behind the folder.
  const std::string folder(2004, 'x');
  ShellFolders().SetFolder(CommonFiles64, folder);
  EXPECT_EQ(Write(), 1);
  EXPECT_EQ(LoaderOf("\\QuillProfileDesigner"),
            folder + "\\Norvane\\ProfDesignDemandLoadHelper8x64.arx");
  ShellFolders().SetFolder(CommonFiles64, folder + "x");
  EXPECT_EXIT((void)Write(), EndedAbnormally, OnlyTheEnd);
}

TEST_F(DemandLoadRegistrationDeathTest, AKeyPathOf512CharactersEndsTheProcess)
{
  // The longest one has 30 characters behind "Applications".
  const std::string host = "Software\\" + std::string(460, 'x');
  ASSERT_EQ((host + "Applications").size(), 481u);
  AddKey(host);
  AddKey(host + "x");
  Register(host);
  ExpectAllEntries(host + "Applications");
  EXPECT_EXIT(Register(host + "x"), EndedAbnormally, OnlyTheEnd);
}

TEST_F(DemandLoadRegistrationDeathTest, AnOverlongKeyPathEndsTheProcess)
{
  const std::string host = "Software\\" + std::string(1000, 'x');
  AddKey(host);
  EXPECT_EXIT(Register(host + "\\"), EndedAbnormally, OnlyTheEnd);
}

TEST_F(DemandLoadRegistrationDeathTest, EveryCheckedCallThatFailsEndsTheProcess)
{
  // The last of each is the last that one registration makes.
  struct CheckedCalls
  {
    const char* function;
    int count;
  };
  for (const CheckedCalls& calls : {CheckedCalls{"wcscpy_s", 8}, CheckedCalls{"wcscat_s", 18}}) {
    const QulString applications = Handle(Applications());
    for (int n = 1; n <= calls.count; ++n) {
      EXPECT_EXIT((FailCall(calls.function, n, ERANGE),
                   (void)WriteDemandLoadEntries(applications, 2, true)),
                  EndedAbnormally, OnlyTheEnd)
          << calls.function << " " << n;
    }
  }
}
