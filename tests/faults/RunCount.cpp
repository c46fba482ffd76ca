#include "tests/faults/RunCount.h"

#include <stdio.h>

#include <map>

namespace {

std::map<std::string, int>& Counts()
{
  static std::map<std::string, int> counts;
  return counts;
}

}  // namespace

void CountRun(const std::string& kind)
{
  ++Counts()[kind];
}

void PrintRunCounts()
{
  for (const auto& [kind, count] : Counts())
    (void)printf("runs: %s %d\n", kind.c_str(), count);
}
