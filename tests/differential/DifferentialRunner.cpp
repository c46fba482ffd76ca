// Runs the database update of many machines in one process, on real databases. Reads the folder of
// a machine from each line of the standard input; what was done comes out as records that each end
// with a NUL, because statements hold line feeds:
//
//   call SQLExecDirectW(stmt#3, "SELECT * FROM Info", -3) = -1      the diary of the ODBC double
//   trace <text>
//   misuse <what the double objects to>
//   end
//
// The folder holds `data`, which becomes C:\Data, and `machine.txt`: a line `language N` if the
// language is registered, a line `connection NAME TEXT` for each registered database, and a line
// `damaged FILE` for each patch that can't be opened.
#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/Diary.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "update/DatabaseConfiguration.h"
#include "update/DatabaseUpdateManager.h"

#include <stdio.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>

// The buffers of the configuration file are left to the end of the process on purpose.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
  return "leak:QulFileAccess::ReadAll\n";
}

namespace {

const char* const EnvironmentKey = "Software\\Norvane\\Kestrelforge\\2010\\Environment";
const char* const ConnectionsKey = "Software\\Norvane\\DatabaseConnections";

void Put(const std::string& kind, const std::string& text)
{
  (void)fputs((kind + " " + text).c_str(), stdout);
  (void)fputc('\0', stdout);
}

// Fills the registry. True if a patch is damaged.
bool LayOut(const std::string& file)
{
  const RegistryView native = RegistryView::Native;
  Registry().SetText(HKEY_LOCAL_MACHINE, native, EnvironmentKey, "DataPath", "C:\\Data");
  std::ifstream lines(file);
  std::string line;
  bool isDamaged = false;
  while (std::getline(lines, line)) {
    std::istringstream words(line);
    std::string kind;
    std::string first;
    std::string rest;
    words >> kind >> first;
    std::getline(words >> std::ws, rest);
    if (kind == "language") {
      Registry().SetNumber(HKEY_LOCAL_MACHINE, native, EnvironmentKey, "Language",
                           static_cast<uint32_t>(std::stoul(first)));
    } else if (kind == "connection") {
      Registry().SetText(HKEY_LOCAL_MACHINE, native, ConnectionsKey, first, rest);
    } else {
      isDamaged = true;
    }
  }
  return isDamaged;
}

// The state of a process that has just been started.
void Restart()
{
  ResetPlatform();
  DataSourceTable.Free();
  updatePromptPending = true;
}

void RunMachine(const std::string& folder)
{
  Restart();
  if (!UseLiveOdbc())
    return;
  std::filesystem::create_directory_symlink(folder + "/data", Files().UnixPath("C:\\Data"));
  const bool isDamaged = LayOut(folder + "/machine.txt");
  {
    std::optional<LeftToTheEnd> damagedPatch;
    if (isDamaged)
      damagedPatch.emplace();
    RunDatabaseUpdate(0, 0);
  }
  for (const std::string& line : DiaryOf({"SQLAllocHandle", "SQLDriverConnectW", "SQLExecDirectW",
                                          "SQLColumnsW", "SQLTablesW", "SQLDisconnect"}))
    Put("call", line);
  for (const std::string& text : DebugTexts())
    Put("trace", text);
}

}  // namespace

int main()
{
  std::string folder;
  while (std::getline(std::cin, folder)) {
    RunMachine(folder);
    // What the update has left open goes now, and with it the log beside a database.
    ResetPlatform();
    for (const std::string& misuse : TakeMisuses())
      Put("misuse", misuse);
    Put("end", "");
    (void)fflush(stdout);
  }
  return 0;
}
