#include "tests/faults/Watchdog.h"

#include <signal.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>

namespace {

constexpr unsigned int Seconds = 60;

// A signal's handler may use nothing that allocates.
char message[512];

void EndProgram(int /*signal*/)
{
  const ssize_t ignored = write(STDERR_FILENO, message, strlen(message));
  _exit(ignored < 0 ? 5 : 4);
}

}  // namespace

Watchdog::Watchdog(const std::string& run)
{
  const std::string text = "This launch does not end: " + run + "\n";
  const size_t length = std::min(text.size(), sizeof(message) - 1);
  memcpy(message, text.data(), length);
  message[length] = '\0';
  (void)signal(SIGALRM, EndProgram);
  (void)alarm(Seconds);
}

Watchdog::~Watchdog()
{
  (void)alarm(0);
}
