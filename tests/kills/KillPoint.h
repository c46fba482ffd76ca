#ifndef TESTS_KILLS_KILLPOINT_H
#define TESTS_KILLS_KILLPOINT_H

#include <functional>

// A moment in the dealings of the program with its databases: just before or just after a call of
// SQLDriverConnectW, SQLExecDirectW or SQLDisconnect. These calls are counted together, from 1.
struct KillPoint
{
  int call = 0;
  bool isAfter = false;
};

// Does the work in a copy of this process, which is killed at that point: nothing is flushed,
// closed or destroyed. False if it ended in another way.
bool IsKilledAt(const KillPoint& point, const std::function<void()>& work);

#endif
