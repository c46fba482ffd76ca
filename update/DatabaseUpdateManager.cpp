#include "update/DatabaseUpdateManager.h"

#include "database/DatabaseNames.h"
#include "database/QulPatchDatabase.h"
#include "database/Trace.h"
#include "settings/EnvironmentSettings.h"
#include "update/DatabaseConfiguration.h"

#include <windows.h>

namespace {

// Opens every patch of the directory and appends those that connect to patches.
void OpenPatches(const QulString& directory, QulArray<QulPatchDatabase*>& patches)
{
  WIN32_FIND_DATAW found = {};
  const HANDLE search = FindFirstFileW((directory + L"\\*.mdb").Text(), &found);
  if (search != INVALID_HANDLE_VALUE) {
    do {
      const QulString fileName(found.cFileName);
      const QulString connectionString =
          QulString(L"DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=") + directory + L"\\" + fileName;
      QulPatchDatabase* patch = new QulPatchDatabase(connectionString.Text(), fileName.Text());
      if (patch->connected)
        patches.Append(patch);
      // One that failed is left alone: a driver that has just refused a file isn't asked to give it
      // back, and the handles end with the process.
      // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks)
    } while (FindNextFileW(search, &found) != 0);
  }
  // Also for a search that found nothing; it does no harm.
  (void)FindClose(search);
}

// An exchange sort that goes back after a swap. Patches of the same version keep their order.
void SortByVersion(QulArray<QulPatchDatabase*>& patches)
{
  for (int i = 1; i < patches.count; ++i) {
    QulPatchDatabase* const patch = patches.data[i];
    QulPatchDatabase* const before = patches.data[i - 1];
    if (!patch->IsOlderThan(before))
      continue;
    patches.data[i - 1] = patch;
    patches.data[i] = before;
    if (i > 1)
      i -= 2;
  }
}

template <typename Database>
void DeleteAll(const QulArray<Database*>& databases)
{
  for (int i = 0; i < databases.count; ++i)
    delete databases.data[i];
}

}  // namespace

DatabaseUpdateManager::DatabaseUpdateManager()
{
  OpenPatches(GetDataPath() + L"\\DatabaseUpdate", patchDatabases);
  SortByVersion(patchDatabases);
  OpenPatches(GetDataPath() + L"\\DatabaseUpdate\\Projects", projectPatchDatabases);
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the destructor deletes them.
  for (const QulString& name : DatabaseNames) {
    const QulString connectionString = GetConnectionString(name);
    modelDatabases.Append(new QulDatabase(connectionString.Text(), name.Text()));
  }
}

DatabaseUpdateManager::~DatabaseUpdateManager()
{
  DeleteAll(patchDatabases);
  DeleteAll(projectPatchDatabases);
  DeleteAll(modelDatabases);
}

void RunDatabaseUpdate(int32_t /*unused1*/, int32_t /*unused2*/)
{
  TraceCallback = nullptr;
  TraceContext = nullptr;
  DatabaseUpdateManager* manager = nullptr;
  try {
    manager = new DatabaseUpdateManager;
    (void)manager->Run();
  } catch (...) {
    ReportTrace(L"\nCritical Error!!");
  }
  // Null if the constructor broke off: what it had opened is left to the end of the process.
  delete manager;
}
