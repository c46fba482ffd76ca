// Every platform call of one launch on an ordinary machine, in order.
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/InstallerDouble.h"
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/ProcessDouble.h"
#include "tests/doubles/VersionDouble.h"
#include "tests/unit/launcher/LaunchMachine.h"
#include "tests/unit/update/LeftToTheEnd.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using Names = std::vector<std::pair<std::string, std::string>>;

// Stand for texts that would make the lines below too long.
const Names ShortNames = {
    {"{host}", "Software\\Autodesk\\AutoCAD\\R17.1\\ABCD-0001"},
    {"{apps}", "Software\\Autodesk\\AutoCAD\\R17.1\\ABCD-0001\\Applications"},
    {"{designer key}",
     "Software\\Autodesk\\AutoCAD\\R17.1\\ABCD-0001\\Applications\\QuillProfileDesigner"},
    {"{new}", "class null, 0, 0xF003F, null, null"},
    {"{plainly}", "null, null, 1, 0x0, null, null, cb 104, zeroed"},
    {"{addon}", "Norvane\\Kestrelforge\\2010"},
    {"{environment}", "Software\\Norvane\\Kestrelforge\\2010\\Environment"},
    {"{connections}", "Software\\Norvane\\DatabaseConnections"},
    {"{line feed}", "\n"},
    {"{driver}", "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ="},
    {"{configuration}",
     "<Kestrelforge><DataSource Platform=\"x64\" Name=\"QuillRules\" Value=\"DSN=Rules\"/>"
     "</Kestrelforge>"},
    {"{server}", "CLSID\\{4996A28C-5085-4349-8D86-81F00F3376F5}\\InprocServer32"},
    {"{files}", "C:\\Program Files\\Common Files\\Norvane"},
    {"{loader}", "C:\\Program Files (x86)\\Common Files\\Norvane\\QuillStartupLoader8x86.arx"},
    {"{launcher}", "C:\\Launcher\\KestrelforgeLauncher.exe"},
    {"{startup}", "KF component in charge of loading or unloading the proper KF version"},
    {"{demand}", "KF component in charge of loading the proper KF version on demand"},
    {"{designer}",
     "KF component in charge of loading the proper Profile Designer version on demand"},
    {"{product}", "{11111111-0000-0000-0000-000000000001}"}};

std::string LongForm(std::string line, const Names& names = ShortNames)
{
  for (const auto& [shortName, text] : names) {
    for (size_t at = line.find(shortName); at != std::string::npos;
         at = line.find(shortName, at + text.size()))
      line.replace(at, shortName.size(), text);
  }
  return line;
}

// The lines of a text that begins with a line feed.
std::vector<std::string> LinesOf(const std::string& text)
{
  std::vector<std::string> lines;
  for (size_t begin = 1; begin < text.size();) {
    const size_t end = text.find('\n', begin);
    lines.push_back(LongForm(text.substr(begin, end - begin)));
    begin = end + 1;
  }
  return lines;
}

const char* const Conversion = R"(
MultiByteToWideChar(0, 0x0, "drawing.dwg", -1, 524288) = 12
)";

const char* const Selection = R"(
RegOpenKeyExW(HKCR, ".dwg", 0, 0x1) = 0 #1
RegQueryValueExW(#1, "", type null, 8192) = 0
RegCloseKey(#1) = 0
RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x1) = 0 #2
RegQueryValueExW(#2, "CurProd", type null, 500) = 0
RegCloseKey(#2) = 0
RegOpenKeyExW(HKCU, "Software\Autodesk\AutoCAD\", 0, 0x1) = 0 #3
RegQueryValueExW(#3, "CurVer", type null, 500) = 0
RegOpenKeyExW(#3, "R17.1\", 0, 0x1) = 0 #4
RegCloseKey(#3) = 0
RegQueryValueExW(#4, "CurVer", type null, 500) = 0
RegOpenKeyExW(#4, "ABCD-0001\", 0, 0x1) = 0 #5
RegCloseKey(#4) = 0
RegCloseKey(#5) = 0
RegOpenKeyExW(HKLM, "{host}\", 0, 0x1) = 0 #6
RegQueryValueExW(#6, "AcadLocation", type null, 500) = 0
RegCloseKey(#6) = 0
)";

const char* const Records = R"(
RegCreateKeyExW(HKCU, "SoftWare\{addon}\Startup", 0, class "", 0, 0x2, null, disposition) = 0 #7
RegOpenKeyExW(HKLM, "Software\{addon}\Environment", 0, 0x20019) = 0 #8
RegQueryValueExW(#8, "BinPath", type 1, 8192) = 0
RegCloseKey(#8) = 0
RegSetValueExW(#7, "Kestrelforge", 0, REG_SZ, "C:\Forge2010\Forge\BIN\Kestrelforge8x64.arx", 86) = 0
RegOpenKeyExW(HKCU, "SoftWare\{addon}", 0, 0x2) = 0 #9
RegSetValueExW(#9, "ProfileName", 0, REG_SZ, "Kestrelforge", 26) = 0
RegSetValueExW(#9, "ProfDescription", 0, REG_SZ, "Kestrelforge Profile", 42) = 0
RegCloseKey(#9) = 0
)";

const char* const LoaderEntries = R"(
RegOpenKeyExW(HKCU, "{host}\", 0, 0xF003F) = 0 #10
RegOpenKeyExW(HKCU, "{apps}\QuillStartupLoader", 0, 0x20019) = 2
SHGetSpecialFolderPathW(null, 43, 0) = 1
RegOpenKeyExW(HKCU, "{apps}\QuillStartupLoader", 0, 0x20006) = 2
RegCreateKeyExW(HKCU, "{apps}\QuillStartupLoader", 0, {new}) = 0 #11
RegSetValueExW(#11, "DESCRIPTION", 0, REG_SZ, "{startup}", 136) = 0
RegCloseKey(#11) = 0
RegOpenKeyExW(HKCU, "{apps}\QuillStartupLoader", 0, 0x20006) = 0 #12
RegSetValueExW(#12, "LOADCTRLS", 0, REG_DWORD, 2, 4) = 0
RegCloseKey(#12) = 0
RegOpenKeyExW(HKCU, "{apps}\QuillStartupLoader", 0, 0x20006) = 0 #13
RegSetValueExW(#13, "LOADER", 0, REG_SZ, "{files}\QuillStartupLoader8x64.arx", 128) = 0
RegCloseKey(#13) = 0
RegOpenKeyExW(HKCU, "{apps}\Tarnwheels", 0, 0x20006) = 2
RegCreateKeyExW(HKCU, "{apps}\Tarnwheels", 0, {new}) = 0 #14
RegSetValueExW(#14, "DESCRIPTION", 0, REG_SZ, "{demand}", 130) = 0
RegCloseKey(#14) = 0
RegOpenKeyExW(HKCU, "{apps}\Kestrelforge", 0, 0x20006) = 2
RegCreateKeyExW(HKCU, "{apps}\Kestrelforge", 0, {new}) = 0 #15
RegSetValueExW(#15, "DESCRIPTION", 0, REG_SZ, "{demand}", 130) = 0
RegCloseKey(#15) = 0
RegOpenKeyExW(HKCU, "{apps}\Tarnwheels", 0, 0x20006) = 0 #16
RegSetValueExW(#16, "LOADCTRLS", 0, REG_DWORD, 13, 4) = 0
RegCloseKey(#16) = 0
RegOpenKeyExW(HKCU, "{apps}\Kestrelforge", 0, 0x20006) = 0 #17
RegSetValueExW(#17, "LOADCTRLS", 0, REG_DWORD, 13, 4) = 0
RegCloseKey(#17) = 0
RegOpenKeyExW(HKCU, "{apps}\Tarnwheels", 0, 0x20006) = 0 #18
RegSetValueExW(#18, "LOADER", 0, REG_SZ, "{files}\KFDemandLoadHelper8x64.arx", 128) = 0
RegCloseKey(#18) = 0
RegOpenKeyExW(HKCU, "{apps}\Kestrelforge", 0, 0x20006) = 0 #19
RegSetValueExW(#19, "LOADER", 0, REG_SZ, "{files}\KFDemandLoadHelper8x64.arx", 128) = 0
RegCloseKey(#19) = 0
RegOpenKeyExW(HKCU, "{designer key}", 0, 0x20006) = 2
RegCreateKeyExW(HKCU, "{designer key}", 0, {new}) = 0 #20
RegSetValueExW(#20, "DESCRIPTION", 0, REG_SZ, "{designer}", 158) = 0
RegCloseKey(#20) = 0
RegOpenKeyExW(HKCU, "{designer key}", 0, 0x20006) = 0 #21
RegSetValueExW(#21, "LOADCTRLS", 0, REG_DWORD, 13, 4) = 0
RegCloseKey(#21) = 0
RegOpenKeyExW(HKCU, "{designer key}", 0, 0x20006) = 0 #22
RegSetValueExW(#22, "LOADER", 0, REG_SZ, "{files}\ProfDesignDemandLoadHelper8x64.arx", 144) = 0
RegCloseKey(#22) = 0
)";

const char* const CommandEntries = R"(
RegOpenKeyExW(HKCU, "{designer key}\Commands", 0, 0x20006) = 2
RegCreateKeyExW(HKCU, "{designer key}\Commands", 0, {new}) = 0 #23
RegSetValueExW(#23, "QulM4ProfileDesigner", 0, REG_SZ, "QulM4ProfileDesigner", 40) = 0
RegCloseKey(#23) = 0
RegOpenKeyExW(HKCU, "{designer key}\Commands", 0, 0x20006) = 0 #24
RegSetValueExW(#24, "TARN_AddCoord", 0, REG_SZ, "TARN_AddCoord", 26) = 0
RegCloseKey(#24) = 0
RegOpenKeyExW(HKCU, "{designer key}\Commands", 0, 0x20006) = 0 #25
RegSetValueExW(#25, "TARN_addProfiles", 0, REG_SZ, "TARN_addProfiles", 32) = 0
RegCloseKey(#25) = 0
RegOpenKeyExW(HKCU, "{designer key}\Commands", 0, 0x20006) = 0 #26
RegSetValueExW(#26, "TARN_addSelectedProfiles", 0, REG_SZ, "TARN_addSelectedProfiles", 48) = 0
RegCloseKey(#26) = 0
RegOpenKeyExW(HKCU, "{designer key}\Commands", 0, 0x20006) = 0 #27
RegSetValueExW(#27, "TARN_NUMDIVS", 0, REG_SZ, "TARN_NUMDIVS", 24) = 0
RegCloseKey(#27) = 0
RegOpenKeyExW(HKCU, "{designer key}\Commands", 0, 0x20006) = 0 #28
RegSetValueExW(#28, "TARN_userprofmenu", 0, REG_SZ, "TARN_userprofmenu", 34) = 0
RegCloseKey(#28) = 0
)";

const char* const Repair = R"(
RegOpenKeyExW(HKCR, "{server}", 0, 0x20219) = 0 #29
RegQueryValueExW(#29, "", type null, 1024) = 0
RegCloseKey(#29) = 0
GetCurrentProcess()
GetModuleFileNameExA(current process, null, 260) = 36
CloseHandle(current process) = 1
SHGetSpecialFolderPathA(null, 44, 0) = 1
GetFileVersionInfoSizeA("{launcher}") = 100
GetFileVersionInfoA("{launcher}", 0, 100) = 1
VerQueryValueA("\StringFileInfo\040904b0\FileVersion") = 1
GetFileVersionInfoSizeA("{loader}") = 100
GetFileVersionInfoA("{loader}", 0, 100) = 1
VerQueryValueA("\StringFileInfo\040904b0\FileVersion") = 1
RegOpenKeyExW(HKLM, "SOFTWARE\{addon}\Products", 0, 0x20219) = 0 #30
RegEnumValueW(#30, 0, name 512, type 1, data 1024) = 0 "{product}"
MsiReinstallProductW("{product}", 0x100) = 0
RegEnumValueW(#30, 1, name 512, type 1, data 1024) = 259
RegCloseKey(#30) = 0
)";

const char* const Patches = R"(
RegOpenKeyExW(HKCU, "{environment}", 0, 0x20019) = 2
RegOpenKeyExW(HKLM, "{environment}", 0, 0x20019) = 0 #31
RegQueryValueExW(#31, "DataPath", type 1, 8192) = 0
RegCloseKey(#31) = 0
FindFirstFileW("C:\Data\DatabaseUpdate\*.mdb") = find#1 "a.mdb"
SQLAllocHandle(ENV, null) = 0 env#1
SQLSetEnvAttr(env#1, 200, 3, -6) = 0
SQLAllocHandle(DBC, env#1) = 0 dbc#1
SQLSetConnectAttrW(dbc#1, 103, 5, 0) = 0
SQLSetConnectAttrW(dbc#1, 101, 0, 0) = 0
SQLDriverConnectW(dbc#1, null, "{driver}C:\Data\DatabaseUpdate\a.mdb", -3, 4096, length, 0) = 0
SQLAllocHandle(STMT, dbc#1) = 0 stmt#1
SQLExecDirectW(stmt#1, "SELECT * FROM KFVersion", -3) = -1
SQLFreeHandle(STMT, stmt#1) = 0
SQLAllocHandle(STMT, dbc#1) = 0 stmt#2
SQLExecDirectW(stmt#2, "SELECT * FROM KFProjectsVersion", -3) = -1
SQLFreeHandle(STMT, stmt#2) = 0
RegOpenKeyExW(HKLM, "{environment}", 0, 0x20019) = 0 #32
RegQueryValueExW(#32, "Language", type null, 4) = 2
RegCloseKey(#32) = 0
SQLAllocHandle(STMT, dbc#1) = 0 stmt#3
SQLExecDirectW(stmt#3, "SELECT * FROM Info", -3) = -1
SQLFreeHandle(STMT, stmt#3) = 0
SQLAllocHandle(STMT, dbc#1) = 0 stmt#4
SQLExecDirectW(stmt#4, "SELECT * FROM UpdateTable ORDER BY [ID]", -3) = -1
SQLFreeHandle(STMT, stmt#4) = 0
FindNextFileW(find#1) = 0
FindClose(find#1) = 1
RegOpenKeyExW(HKCU, "{environment}", 0, 0x20019) = 2
RegOpenKeyExW(HKLM, "{environment}", 0, 0x20019) = 0 #33
RegQueryValueExW(#33, "DataPath", type 1, 8192) = 0
RegCloseKey(#33) = 0
FindFirstFileW("C:\Data\DatabaseUpdate\Projects\*.mdb") = invalid
FindClose(invalid) = 0
)";

const char* const FirstProductDatabase = R"(
RegOpenKeyExW(HKCU, "{environment}", 0, 0x20019) = 2
RegOpenKeyExW(HKLM, "{environment}", 0, 0x20019) = 0 #34
RegQueryValueExW(#34, "DataPath", type 1, 8192) = 0
RegCloseKey(#34) = 0
_wfopen_s("C:\Data\Configuration\DatabaseConfiguration.xml", "r, ccs=UNICODE") = 0
MultiByteToWideChar(0, 0x0, "{configuration}", -1, 524288) = 94
SQLAllocHandle(ENV, null) = 0 env#2
SQLSetEnvAttr(env#2, 200, 3, -6) = 0
SQLAllocHandle(DBC, env#2) = 0 dbc#2
SQLSetConnectAttrW(dbc#2, 103, 5, 0) = 0
SQLSetConnectAttrW(dbc#2, 101, 0, 0) = 0
SQLDriverConnectW(dbc#2, null, "DSN=Rules", -3, 4096, length, 0) = 0
SQLAllocHandle(STMT, dbc#2) = 0 stmt#5
SQLExecDirectW(stmt#5, "SELECT * FROM KFVersion", -3) = 0
SQLBindCol(stmt#5, 1, -8, 100, ind#1) = 0
SQLBindCol(stmt#5, 2, -8, 100, ind#1) = 0
SQLFetch(stmt#5) = 0
SQLFetch(stmt#5) = 100
SQLFreeHandle(STMT, stmt#5) = 0
SQLAllocHandle(STMT, dbc#2) = 0 stmt#6
SQLExecDirectW(stmt#6, "SELECT * FROM KFProjectsVersion", -3) = -1
SQLFreeHandle(STMT, stmt#6) = 0
RegOpenKeyExW(HKLM, "{environment}", 0, 0x20019) = 0 #35
RegQueryValueExW(#35, "Language", type null, 4) = 2
RegCloseKey(#35) = 0
SQLAllocHandle(STMT, dbc#2) = 0 stmt#7
SQLExecDirectW(stmt#7, "SELECT * FROM Info", -3) = -1
SQLFreeHandle(STMT, stmt#7) = 0
)";

const char* const RegisteredLookup = R"(
RegOpenKeyExW(HKCU, "{connections}", 0, 0x20019) = 2
RegOpenKeyExW(HKLM, "{connections}", 0, 0x20019) = 2
)";

const char* const CurrentProjectLookup = R"(
RegOpenKeyExW(HKCU, "{environment}", 0, 0x20019) = 2
RegOpenKeyExW(HKLM, "{environment}", 0, 0x20019) = 0 #44
RegQueryValueExW(#44, "DataPath", type 1, 8192) = 0
RegCloseKey(#44) = 0
)";

// A database whose environment and connection have that number.
const char* const RefusedDatabase = R"(
SQLAllocHandle(ENV, null) = 0 env#{n}
SQLSetEnvAttr(env#{n}, 200, 3, -6) = 0
SQLAllocHandle(DBC, env#{n}) = 0 dbc#{n}
SQLSetConnectAttrW(dbc#{n}, 103, 5, 0) = 0
SQLSetConnectAttrW(dbc#{n}, 101, 0, 0) = 0
SQLDriverConnectW(dbc#{n}, null, "{string}", -3, 4096, length, 0) = -1
OutputDebugStringW("{line feed}")
OutputDebugStringW("Error driver connect to database.")
RegOpenKeyExW(HKLM, "{environment}", 0, 0x20019) = 0 #{key}
RegQueryValueExW(#{key}, "Language", type null, 4) = 2
RegCloseKey(#{key}) = 0
)";

const char* const ClosedDatabase = R"(
SQLDisconnect(dbc#{n}) = {code}
SQLFreeHandle(DBC, dbc#{n}) = 0
SQLFreeHandle(ENV, env#{n}) = 0
)";

const char* const PathAndStart = R"(
RegOpenKeyExW(HKLM, "Software\{addon}\Environment", 0, 0x20019) = 0 #53
RegQueryValueExW(#53, "AddPath", type 1, 65536) = 0
RegCloseKey(#53) = 0
GetEnvironmentVariableW("PATH", 32768) = 22
GetLongPathNameW("c:\windows", 2048) = 0
GetLongPathNameW("d:\norvane", 2048) = 0
SetEnvironmentVariableW("PATH", "C:\Forge2010\Bin;c:\windows;d:\norvane;") = 1
CreateProcessW("C:\Host\ABCD.exe", "/nologo drawing.dwg", {plainly}) = 1
)";

// Key is the first registry key that is opened for the first of these databases, and each takes
// one.
std::string RefusedDatabases(int first, int last, int key)
{
  std::string lines;
  for (int n = first; n <= last; ++n, ++key)
    lines +=
        LongForm(RefusedDatabase,
                 {{"{n}", std::to_string(n)}, {"{key}", std::to_string(key)}, {"{string}", ""}})
            .substr(1);
  return lines;
}

std::string ProductDatabases()
{
  const std::string currentProject = LongForm(
      RefusedDatabase,
      {{"{n}", "11"}, {"{key}", "45"}, {"{string}", "{driver}C:\\Data\\Kernel\\Data\\model.mdb"}});
  return FirstProductDatabase + RefusedDatabases(3, 5, 36) + (RegisteredLookup + 1) +
         RefusedDatabases(6, 10, 39) + (CurrentProjectLookup + 1) + currentProject.substr(1) +
         RefusedDatabases(12, 16, 46) + (RegisteredLookup + 1) + RefusedDatabases(17, 18, 51);
}

std::string ClosedDatabases()
{
  std::string lines = "\n";
  for (int n = 1; n <= 18; ++n)
    lines += LongForm(ClosedDatabase, {{"{n}", std::to_string(n)}, {"{code}", n <= 2 ? "0" : "-1"}})
                 .substr(1);
  return lines;
}

class LaunchDiary : public LaunchMachine
{
protected:
  static void InstallAddOn()
  {
    const std::string key = AddOnKey;
    SetBinPath(RegistryView::Native, "C:\\Forge2010");
    Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Native, key + "\\Environment", "AddPath",
                       "C:\\Forge2010\\Bin");
    Registry().SetText(HKEY_CLASSES_ROOT, RegistryView::Wow32, LongForm("{server}"), "",
                       "C:\\Forge2010\\Server.dll");
    Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Wow32, key + "\\Products",
                       LongForm("{product}"), "Kestrelforge");
    Installer().AddProduct(LongForm("{product}"));
    Versions().SetFileVersion(LongForm("{launcher}"), "2010.1.0.0");
    Versions().SetFileVersion(LongForm("{loader}"), "2010.1.0.0");
  }

  // One patch and one of the product's databases can be connected to.
  static void InstallDatabases()
  {
    Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Native, LongForm("{environment}"),
                       "DataPath", "C:\\Data");
    Files().Put("C:\\Data\\Configuration\\DatabaseConfiguration.xml", LongForm("{configuration}"));
    Files().Put("C:\\Data\\DatabaseUpdate\\a.mdb", "");
    (void)Odbc().Database(LongForm("{driver}C:\\Data\\DatabaseUpdate\\a.mdb"));
    (void)Odbc().Database("DSN=Rules").Table("KFVersion", {{"MajorNumber", "2"}});
  }

  // Compared piece by piece, so that a failure shows its place.
  static void ExpectDiary(const std::vector<std::string>& pieces)
  {
    size_t at = 0;
    for (const std::string& piece : pieces) {
      for (const std::string& line : LinesOf(piece)) {
        ASSERT_LT(at, Diary().size()) << "no call behind the last one, expected: " << line;
        ASSERT_EQ(Diary()[at], line) << "call " << at + 1;
        ++at;
      }
    }
    ASSERT_EQ(at, Diary().size()) << "more calls, the first: " << Diary()[at];
  }
};

}  // namespace

TEST_F(LaunchDiary, AFirstLaunchMakesTheseCallsInThisOrder)
{
  Registry().SetText(HKEY_CLASSES_ROOT, RegistryView::Native, ".dwg", "", "AutoCAD.Drawing.17");
  InstallHost("R17.1", true);
  InstallAddOn();
  Processes().SetVariable("PATH", "C:\\Windows;D:\\Norvane;");
  InstallDatabases();
  {
    const LeftToTheEnd buffersOfTheConfiguration;
    Launch("drawing.dwg");
  }
  ExpectDiary({Conversion, Selection, Records, LoaderEntries, CommandEntries, Repair, Patches,
               ProductDatabases(), ClosedDatabases(), PathAndStart});
}
