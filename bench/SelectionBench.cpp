#include "host/HostSelection.h"
#include "tests/doubles/Diary.h"
#include "tests/doubles/RegistryDouble.h"

#include <benchmark/benchmark.h>

static void SelectHostByCurrentVersion(benchmark::State& state)
{
  ResetPlatform();
  const char* const host = "Software\\Autodesk\\AutoCAD\\R17.1\\ABCD-0001";
  RegistryDouble& registry = Registry();
  registry.SetText(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk", "CurProd",
                   "AutoCAD");
  registry.SetText(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk\\AutoCAD", "CurVer",
                   "R17.1");
  registry.SetText(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk\\AutoCAD\\R17.1",
                   "CurVer", "ABCD-0001");
  registry.AddKey(HKEY_CURRENT_USER, RegistryView::Native, host);
  registry.SetText(HKEY_LOCAL_MACHINE, RegistryView::Native, host, "AcadLocation",
                   "C:\\Program Files\\AutoCAD 2008");

  for (auto _ : state) {
    QulString commandLine(L"  \"C:\\Drawings\\Plan of the house.dwg\" /b start.scr");
    QulString hostKeyPath;
    QulString hostExecutable;
    bool hostIs64Bit = false;
    SelectHost(commandLine, hostKeyPath, hostExecutable, hostIs64Bit);
    if (hostExecutable.Length() == 0)
      state.SkipWithError("no host was found");
    ClearDiary();
  }
}
BENCHMARK(SelectHostByCurrentVersion);
