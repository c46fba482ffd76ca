// The built program as a file: what it says about itself, and what it would need on a user's
// machine.

#include "tests/system/LauncherTest.h"
#include "tests/system/PortableExecutable.h"

#include <winver.h>

#include <algorithm>

namespace {

class Artefact : public testing::Test
{
protected:
  void SetUp() override { ASSERT_TRUE(file.IsWhole()) << LauncherProgram(); }

  bool Holds(const std::string& text) const { return file.Bytes().find(text) != std::string::npos; }

  // The same text in 16-bit characters.
  bool HoldsWide(const std::string& text) const
  {
    std::string wide;
    for (const char character : text) {
      wide += character;
      wide += '\0';
    }
    return Holds(wide);
  }

  bool HasCharacteristic(int flag) const
  {
    return (file.Headers().OptionalHeader.DllCharacteristics & flag) != 0;
  }

  const PortableExecutable file = PortableExecutable(LauncherProgram());
};

std::string Upper(std::string text)
{
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return text;
}

// Every name of a library that stands anywhere in the file, in capitals: those that are loaded late
// or by name are in no table.
std::vector<std::string> LibraryNames(const std::string& bytes)
{
  const std::string text = Upper(bytes);
  std::vector<std::string> names;
  for (size_t at = text.find(".DLL"); at != std::string::npos; at = text.find(".DLL", at + 1)) {
    size_t begin = at;
    while (begin > 0 && text[begin - 1] > ' ' && text[begin - 1] <= '~') {
      --begin;
    }
    names.push_back(text.substr(begin, at + 4 - begin));
  }
  return names;
}

bool IsOfWindows(const std::string& library)
{
  const std::vector<std::string> ofWindows = {"ADVAPI32.DLL", "KERNEL32.DLL", "MSI.DLL",
                                              "MSVCRT.DLL",   "ODBC32.DLL",   "PSAPI.DLL",
                                              "SHELL32.DLL",  "USER32.DLL",   "VERSION.DLL"};
  return std::find(ofWindows.begin(), ofWindows.end(), library) != ofWindows.end();
}

std::wstring StoredFileVersion()
{
  DWORD unused = 0;
  std::vector<BYTE> block(GetFileVersionInfoSizeW(LauncherProgram().c_str(), &unused) + 1);
  void* value = nullptr;
  UINT length = 0;
  if (!GetFileVersionInfoW(LauncherProgram().c_str(), 0, static_cast<DWORD>(block.size() - 1),
                           block.data()) ||
      !VerQueryValueW(block.data(), L"\\StringFileInfo\\040904b0\\FileVersion", &value, &length)) {
    return std::wstring();
  }
  return static_cast<const wchar_t*>(value);
}

std::string StoredManifest()
{
  const HMODULE module =
      LoadLibraryExW(LauncherProgram().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(24));
  std::string manifest;
  if (resource != nullptr) {
    manifest.assign(static_cast<const char*>(LockResource(LoadResource(module, resource))),
                    SizeofResource(module, resource));
  }
  FreeLibrary(module);
  return manifest;
}

}  // namespace

TEST_F(Artefact, IsA64BitProgramWithoutAConsole)
{
  EXPECT_EQ(file.Headers().FileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
  EXPECT_EQ(file.Headers().OptionalHeader.Magic, IMAGE_NT_OPTIONAL_HDR64_MAGIC);
  EXPECT_EQ(file.Headers().OptionalHeader.Subsystem, IMAGE_SUBSYSTEM_WINDOWS_GUI);
}

TEST_F(Artefact, MayBeLoadedAnywhereAndRunsNoData)
{
  EXPECT_TRUE(HasCharacteristic(IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE));
  EXPECT_TRUE(HasCharacteristic(IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA));
  EXPECT_TRUE(HasCharacteristic(IMAGE_DLLCHARACTERISTICS_NX_COMPAT));
}

TEST_F(Artefact, KeepsItsRelocations)
{
  EXPECT_EQ(file.Headers().FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
  EXPECT_GT(file.TableSize(IMAGE_DIRECTORY_ENTRY_BASERELOC), 8u);
}

TEST_F(Artefact, NeedsNoLibraryButThoseOfWindows)
{
  EXPECT_GE(file.Imports().size(), 5u);
  for (const std::string& name : file.Imports()) {
    EXPECT_TRUE(IsOfWindows(Upper(name))) << name;
  }
}

TEST_F(Artefact, NamesNoLibraryButThoseOfWindows)
{
  std::vector<std::string> foreign = LibraryNames(file.Bytes());
  EXPECT_EQ(std::erase(foreign, "MSI.DLL"), 1u);
  std::erase_if(foreign, IsOfWindows);
  EXPECT_EQ(foreign, std::vector<std::string>());
}

TEST_F(Artefact, DoesNotLoadTheInstallerAtItsStart)
{
  for (const std::string& name : file.Imports()) {
    EXPECT_NE(Upper(name), "MSI.DLL");
  }
}

TEST_F(Artefact, AsksForNoElevation)
{
  EXPECT_NE(StoredManifest().find("level=\"asInvoker\""), std::string::npos);
}

TEST_F(Artefact, TellsItsReleaseInItsVersion)
{
  const std::wstring version = StoredFileVersion();
  EXPECT_TRUE(version.starts_with(std::to_wstring(KESTREL_RELEASE) + L".")) << version;
  EXPECT_EQ(std::count(version.begin(), version.end(), L'.'), 3) << version;
  EXPECT_EQ(version.find_first_not_of(L"0123456789."), std::wstring::npos) << version;
}

TEST_F(Artefact, HoldsNoTimeStamp)
{
  EXPECT_EQ(file.TimeStamps(), std::vector<DWORD>());
}

TEST_F(Artefact, HasTheStackProtectorLinkedIn)
{
  EXPECT_TRUE(Holds("*** stack smashing detected ***"));
}

TEST_F(Artefact, IsSmallerThanOneMebibyte)
{
  EXPECT_LT(file.Bytes().size(), 1024u * 1024u);
}

TEST_F(Artefact, TellsNothingOfTheMachineThatBuiltIt)
{
  for (const std::string folder : {KESTREL_SOURCE_FOLDER, KESTREL_BUILD_FOLDER}) {
    EXPECT_FALSE(Holds(folder)) << folder;
    EXPECT_FALSE(HoldsWide(folder)) << folder;
  }
}
