// The part of DatabaseUpdateManager that decides which database takes which patch.
#include "database/DatabaseNames.h"
#include "database/QulPatchDatabase.h"
#include "update/DatabaseUpdateManager.h"

bool updatePromptPending = true;

namespace {

// What a question to the user would say. There is no window to ask it in, and it goes nowhere.
void ComposePrompt(const QulString& databaseName)
{
  const QulString title(L"Old database");
  QulString question;
  question.Format(L"%s database is not up to date!\nUpdate?", databaseName.Text());
}

bool IsOlder(const QulDatabase& database, const QulPatchDatabase& patch)
{
  return database.connected && database.IsOlderThan(&patch);
}

bool IsOlderProject(const QulDatabase& database, const QulPatchDatabase& patch)
{
  return database.connected && database.IsProjectsVersionOlderThan(patch);
}

}  // namespace

int32_t DatabaseUpdateManager::Run()
{
  if (ConfirmUpdate())
    ApplyPatches();
  if (HasOlderProject())
    ApplyProjectPatches();
  return 1;
}

bool DatabaseUpdateManager::ConfirmUpdate() const
{
  if (patchDatabases.count == 0)
    return false;
  const QulPatchDatabase& newest = *patchDatabases.data[patchDatabases.count - 1];
  for (int i = 0; i < DatabaseCount; ++i) {
    if (IsOlder(*modelDatabases.data[i], newest) && updatePromptPending) {
      updatePromptPending = false;
      ComposePrompt(DatabaseNames[i]);
      return true;
    }
  }
  return false;
}

void DatabaseUpdateManager::ApplyPatches()
{
  for (int p = 0; p < patchDatabases.count; ++p) {
    QulPatchDatabase& patch = *patchDatabases.data[p];
    for (int i = 0; i < DatabaseCount; ++i) {
      QulDatabase& database = *modelDatabases.data[i];
      if (!IsOlder(database, patch))
        continue;
      // First, so that a patch that fails is not tried again at each start. Where this fails, it
      // is.
      (void)database.WriteVersion(patch);
      patch.ApplyPatch(&database);
    }
  }
}

bool DatabaseUpdateManager::HasOlderProject() const
{
  for (int i = 0; i < DatabaseCount; ++i) {
    for (int p = 0; p < projectPatchDatabases.count; ++p) {
      if (IsOlderProject(*modelDatabases.data[i], *projectPatchDatabases.data[p]))
        return true;
    }
  }
  return false;
}

void DatabaseUpdateManager::ApplyProjectPatches()
{
  for (int p = 0; p < projectPatchDatabases.count; ++p) {
    QulPatchDatabase& patch = *projectPatchDatabases.data[p];
    for (int i = 0; i < DatabaseCount; ++i) {
      QulDatabase& database = *modelDatabases.data[i];
      if (!IsOlderProject(database, patch))
        continue;
      // First, as with the versions above.
      (void)database.WriteProjectsVersion(patch);
      patch.ApplyPatch(&database);
    }
  }
}
