#ifndef TESTS_DRIVER_CHILD_H
#define TESTS_DRIVER_CHILD_H

#include <sys/types.h>

#include <functional>
#include <string>

// A copy of this process (no thread but the calling one may run) that does one thing and ends.
class Child
{
public:
  // Write sends text to the parent, who reads it from Output.
  using Writer = std::function<void(const std::string&)>;

  explicit Child(const std::function<int(const Writer&)>& work);
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  void Kill() const;
  // The number that work gave, or -1 if a signal ended the child. Output is complete then.
  int Wait();
  // What the child has sent up to its end.
  const std::string& Output() const { return output; }

private:
  pid_t process;
  int readEnd;
  bool isRunning = true;
  std::string output;
};

#endif
