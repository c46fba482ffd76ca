// Values longer than the buffers that they are read into, values without an end, and texts that
// don't fit: a run ends at once and on purpose, or goes on, and never overruns its memory.

#include "sandbox/common/SandboxFiles.h"
#include "tests/system/LauncherTest.h"

namespace {

constexpr DWORD InvalidRuntimeParameter = 0xC0000417;

class Limits : public LauncherTest
{
protected:
  void SetUp() override
  {
    LauncherTest::SetUp();
    InstallHost(L"R18.0", L"ABCD-0001");
  }

  void ExpectFatalEnd(const LauncherRun& run)
  {
    EXPECT_EQ(run.exitCode, InvalidRuntimeParameter);
    EXPECT_EQ(run.exceptions, std::vector<DWORD>());
    EXPECT_EQ(run.children, 0u);
  }

  void ExpectOrdinaryEnd(const LauncherRun& run, size_t hosts)
  {
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.exceptions, std::vector<DWORD>());
    EXPECT_EQ(run.hosts.size(), hosts);
    EXPECT_EQ(run.children, hosts);
  }

  const std::wstring hostKey = HostKey(L"R18.0", L"ABCD-0001");
  const std::wstring productKey = std::wstring(AutodeskKey) + L"\\AutoCAD";
};

}  // namespace

TEST_F(Limits, ALongPathElementIsKept)
{
  // Wine's GetLongPathNameW overruns its own memory beyond 1024 characters, so it can't be asked
  // for the longest element that the launcher takes.
  const std::wstring element = L"d:\\" + std::wstring(997, L'x');
  searchPath = L"C:\\windows;" + element;
  const LauncherRun run = Run();
  ExpectOrdinaryEnd(run, 1);
  EXPECT_EQ(run.Host().path, L"c:\\windows;" + element + L";");
}

TEST_F(Limits, APathElementOf2048CharactersEndsTheProcess)
{
  searchPath = L"C:\\windows;D:\\" + std::wstring(2045, L'x') + L";C:\\windows";
  ExpectFatalEnd(Run());
}

TEST_F(Limits, TheFatalEndComesAfterTheRegistryIsWritten)
{
  searchPath = std::wstring(5000, L'x');
  ExpectFatalEnd(Run());
  EXPECT_EQ(User.ReadText(AddOnKey, L"ProfileName"), L"Kestrelforge");
  EXPECT_TRUE(User.HasKey(hostKey + L"\\Applications\\QuillStartupLoader"));
}

TEST_F(Limits, ANewPathOf32768CharactersEndsTheProcess)
{
  Machine64.WriteText(EnvironmentKey, L"AddPath", std::wstring(20000, L'a'));
  searchPath = L"";
  for (int i = 0; i < 13; ++i) {
    searchPath += std::wstring(1000, L'b') + L";";
  }
  ExpectFatalEnd(Run());
}

TEST_F(Limits, AKeyPathBeyondItsBufferEndsTheProcess)
{
  const std::wstring version = L"R18." + std::wstring(230, L'0');
  const std::wstring product = L"ABCD-" + std::wstring(230, L'0');
  RecordHost(version, product);
  ExpectFatalEnd(Run());
  EXPECT_EQ(User.ReadText(AddOnKey, L"ProfileName"), L"Kestrelforge");
  EXPECT_FALSE(User.HasKey(HostKey(version, product) + L"\\Applications"));
}

TEST_F(Limits, AnAddPathBeyondItsBufferCountsAsNone)
{
  Machine64.WriteText(EnvironmentKey, L"AddPath", std::wstring(40000, L'a'));
  const LauncherRun run = Run();
  ExpectOrdinaryEnd(run, 1);
  EXPECT_EQ(run.Host().path, L"c:\\windows\\system32;c:\\windows;");
}

TEST_F(Limits, AFolderOfTheHostThatFillsItsBufferIsUsed)
{
  // 249 characters and the terminator are the 500 bytes that are read.
  std::wstring folder = Scratch() + L"\\" + std::wstring(100, L'f') + L"\\";
  folder += std::wstring(249 - folder.size(), L'g');
  LayHostProgram(folder + L"\\ABCD.exe");
  Machine64.WriteText(hostKey, L"AcadLocation", folder);
  const LauncherRun run = Run();
  ExpectOrdinaryEnd(run, 1);
  EXPECT_EQ(run.Host().program, folder + L"\\ABCD.exe");
}

TEST_F(Limits, AFolderOfTheHostBeyondItsBufferCountsAsNone)
{
  std::wstring folder = Scratch() + L"\\" + std::wstring(100, L'f') + L"\\";
  folder += std::wstring(250 - folder.size(), L'g');
  LayHostProgram(folder + L"\\ABCD.exe");
  Machine64.WriteText(hostKey, L"AcadLocation", folder);
  ExpectOrdinaryEnd(Run(), 0);
  EXPECT_EQ(StartupLoader(), L"Kestrelforge9x64.arx");
}

TEST_F(Limits, OverlongFoldersVersionsAndProductsDoNoHarm)
{
  const std::wstring overlong(20000, L'R');
  Machine64.WriteText(hostKey, L"AcadLocation", overlong);
  ExpectOrdinaryEnd(Run(), 0);
  User.WriteText(productKey + L"\\R18.0", L"CurVer", overlong);
  ExpectOrdinaryEnd(Run(), 0);
  User.WriteText(productKey, L"CurVer", overlong);
  ExpectOrdinaryEnd(Run(), 0);
}

TEST_F(Limits, AnOverlongCurrentProductCountsAsNone)
{
  User.WriteText(AutodeskKey, L"CurProd", std::wstring(20000, L'R'));
  ExpectOrdinaryEnd(Run(), 1);
}

TEST_F(Limits, AnOverlongDrawingClassDoesNoHarm)
{
  for (const size_t length : {2046u, 2047u, 2048u, 3000u, 4094u, 4095u, 4096u, 20000u}) {
    Classes64.WriteText(L".dwg", L"", std::wstring(length, L'1'));
    ExpectOrdinaryEnd(Run(), 1);
  }
}

TEST_F(Limits, AnOverlongServerPathDoesNoHarm)
{
  const wchar_t* const key = L"CLSID\\{4996A28C-5085-4349-8D86-81F00F3376F5}\\InprocServer32";
  for (const size_t length : {511u, 512u, 20000u}) {
    Classes32.WriteText(key, L"", std::wstring(length, L's'));
    ExpectOrdinaryEnd(Run(), 1);
  }
}

TEST_F(Limits, AnOverlongInstallFolderDoesNoHarm)
{
  for (const size_t length : {2046u, 2047u, 2048u, 4095u, 4096u, 20000u}) {
    Machine64.WriteText(EnvironmentKey, L"BinPath", std::wstring(length, L'b'));
    ExpectOrdinaryEnd(Run(), 1);
  }
}

TEST_F(Limits, OverlongNamesAndDataOfProductsDoNoHarm)
{
  const std::wstring key = L"SOFTWARE\\Norvane\\Kestrelforge\\2010\\Products";
  Classes32.WriteText(L"CLSID\\{4996A28C-5085-4349-8D86-81F00F3376F5}\\InprocServer32", L"",
                      L"C:\\a folder\\KFServer.dll");
  Machine32.WriteText(key, std::wstring(600, L'n'), L"x");
  Machine32.WriteText(key, L"data", std::wstring(600, L'd'));
  ExpectOrdinaryEnd(Run(), 1);
}

TEST_F(Limits, AnOverlongVersionDemandDoesNoHarm)
{
  ExpectOrdinaryEnd(Run(L"/AcadVer 17." + std::wstring(10000, L'1')), 0);
  ExpectOrdinaryEnd(Run(L"/AcadVer 18\\" + std::wstring(10000, L'1')), 0);
}

TEST_F(Limits, ValuesWithoutATerminatorAreReadToTheirEnd)
{
  User.WriteUnterminated(AutodeskKey, L"CurProd", L"AutoCAD");
  User.WriteUnterminated(productKey, L"CurVer", L"R18.0");
  User.WriteUnterminated(productKey + L"\\R18.0", L"CurVer", L"ABCD-0001");
  Machine64.WriteUnterminated(hostKey, L"AcadLocation", HostFolder(L"R18.0", L"ABCD-0001"));
  Machine64.WriteUnterminated(EnvironmentKey, L"AddPath", L"X:\\A");
  const LauncherRun run = Run();
  ExpectOrdinaryEnd(run, 1);
  EXPECT_EQ(run.Host().path, L"X:\\A;c:\\windows\\system32;c:\\windows;");
}

TEST_F(Limits, ValuesThatFillTheirBuffersWithoutATerminatorDoNoHarm)
{
  Classes64.WriteUnterminated(L".dwg", L"", std::wstring(4096, L'1'));
  Machine64.WriteUnterminated(EnvironmentKey, L"BinPath", std::wstring(2048, L'b'));
  ExpectOrdinaryEnd(Run(), 1);
  Machine64.WriteUnterminated(hostKey, L"AcadLocation", std::wstring(250, L'a'));
  ExpectOrdinaryEnd(Run(), 0);
  User.WriteUnterminated(productKey, L"CurVer", std::wstring(250, L'v'));
  ExpectOrdinaryEnd(Run(), 0);
}

TEST_F(Limits, AnAddPathThatFillsItsBufferEndsTheProcess)
{
  Machine64.WriteUnterminated(EnvironmentKey, L"AddPath", std::wstring(32768, L'a'));
  ExpectFatalEnd(Run());
}
