#ifndef UPDATE_DATABASEUPDATEMANAGER_H
#define UPDATE_DATABASEUPDATEMANAGER_H

#include "foundation/QulArray.h"

#include <stdint.h>

class QulDatabase;
class QulPatchDatabase;

// False once an update has been confirmed in this process.
extern bool updatePromptPending;

// All databases of an update, open side by side from its beginning to its end.
class DatabaseUpdateManager
{
public:
  // Opens every patch database, every project patch and the product's databases. What can't be
  // opened is reported by QulDatabase.
  DatabaseUpdateManager();
  DatabaseUpdateManager(const DatabaseUpdateManager&) = delete;
  DatabaseUpdateManager& operator=(const DatabaseUpdateManager&) = delete;
  // Closes all of them, in the order of the arrays.
  ~DatabaseUpdateManager();

  // Brings the product's databases up to date: first each one that is older than a patch, with the
  // patches from the oldest to the newest, then each one that is older than a project patch. What
  // is older is decided by the versions as they stood when the databases were opened. A version is
  // written before the content that belongs to it, and no failure stops the run. Returns 1.
  int32_t Run();

  // Whether the product's databases are to be updated: true once in a process, for the first one
  // that is older than the newest patch. The place for a question to the user, who isn't asked.
  bool ConfirmUpdate() const;

  // What these point to is owned. Patches are connected; the product's databases stand at the
  // places of their names in DatabaseNames, whether they are connected or not.
  QulArray<QulPatchDatabase*> patchDatabases;         // oldest first
  QulArray<QulPatchDatabase*> projectPatchDatabases;  // as the file search found them
  QulArray<QulDatabase*> modelDatabases;

private:
  void ApplyPatches();
  bool HasOlderProject() const;
  void ApplyProjectPatches();
};

// Updates the databases of the product. Nothing is thrown out of here: an update that breaks
// off is reported, and what it has written stays. The arguments have no effect.
void RunDatabaseUpdate(int32_t unused1, int32_t unused2);

#endif
