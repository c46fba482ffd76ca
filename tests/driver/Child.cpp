#include "tests/driver/Child.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

Child::Child(const std::function<int(const Writer&)>& work) : process(-1), readEnd(-1)
{
  int ends[2] = {};
  if (pipe(ends) != 0) {
    perror("pipe");
    exit(2);
  }
  process = fork();
  if (process < 0) {
    perror("fork");
    exit(2);
  }
  if (process == 0) {
    close(ends[0]);
    const int result = work([&](const std::string& text) {
      if (write(ends[1], text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        _exit(3);
    });
    _exit(result);  // no test result is written a second time
  }
  close(ends[1]);
  readEnd = ends[0];
}

Child::~Child()
{
  if (isRunning) {
    Kill();
    Wait();
  }
}

void Child::Kill() const
{
  kill(process, SIGKILL);
}

int Child::Wait()
{
  char bytes[4096];
  for (ssize_t count = read(readEnd, bytes, sizeof(bytes)); count > 0;
       count = read(readEnd, bytes, sizeof(bytes)))
    output.append(bytes, static_cast<size_t>(count));
  close(readEnd);
  int status = 0;
  waitpid(process, &status, 0);
  isRunning = false;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
