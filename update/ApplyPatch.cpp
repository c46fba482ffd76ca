// The part of QulPatchDatabase that brings one target up to date.
#include "database/QulPatchDatabase.h"
#include "database/UpdateTable.h"

void QulPatchDatabase::ApplyPatch(QulDatabase* target)
{
  if (target == nullptr)
    return;
  targetDatabase = target;
  const QulArray<UpdateStep> targetSteps = updateTable->PrepareSteps(*this, *target);
  for (int i = 0; i < targetSteps.count; ++i)
    PatchTable(targetSteps.data[i]);
  targetDatabase = nullptr;
}
