#ifndef UPDATE_DATABASEUPDATEMANAGER_H
#define UPDATE_DATABASEUPDATEMANAGER_H

#include "foundation/QulArray.h"

#include <stdint.h>

class QulDatabase;
class QulPatchDatabase;

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

  // What these point to is owned. Patches are connected; the product's databases stand at the
  // places of their names in DatabaseNames, whether they are connected or not.
  QulArray<QulPatchDatabase*> patchDatabases;         // oldest first
  QulArray<QulPatchDatabase*> projectPatchDatabases;  // as the file search found them
  QulArray<QulDatabase*> modelDatabases;
};

// Updates the databases of the product. Nothing is thrown out of here: an update that breaks
// off is reported, and what it has written stays. The arguments have no effect.
void RunDatabaseUpdate(int32_t unused1, int32_t unused2);

#endif
