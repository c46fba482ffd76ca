#ifndef UNIT_UPDATESTEPS_H
#define UNIT_UPDATESTEPS_H

// Steps of an update as lines: "QuillBase Source>Target 101", with the three flags.

#include "database/UpdateTable.h"
#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

inline std::string StepText(const UpdateStep& step)
{
  return TextOf(step.database) + " " + TextOf(step.sourceTable) + ">" + TextOf(step.targetTable) +
         " " + (step.deleteRows ? "1" : "0") + (step.recreate ? "1" : "0") +
         (step.createIfMissing ? "1" : "0");
}

inline Lines StepsOf(const QulArray<UpdateStep>& steps)
{
  Lines lines;
  for (int i = 0; i < steps.count; ++i)
    lines.push_back(StepText(steps.data[i]));
  return lines;
}

#endif
