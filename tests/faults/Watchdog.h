#ifndef FAULTS_WATCHDOG_H
#define FAULTS_WATCHDOG_H

#include <string>

// Ends the program, with the name of the run on the standard error output, if this lives for more
// than a minute.
class Watchdog
{
public:
  explicit Watchdog(const std::string& run);
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;
  ~Watchdog();
};

#endif
