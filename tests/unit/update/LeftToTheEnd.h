#ifndef TESTS_UPDATE_LEFTTOTHEEND_H
#define TESTS_UPDATE_LEFTTOTHEEND_H

// Declared weak, so that builds without a leak check link too.
extern "C" {
[[gnu::weak]] void __lsan_disable();
[[gnu::weak]] void __lsan_enable();
}

// What is allocated while one of these lives is left to the end of the process on purpose, and the
// leak check passes it over: the buffers of a file that was read, a patch that could not be opened,
// and what an update had opened when it broke off. It stands around the one call that does so, not
// in the options of the program, where it would hide what a destructor forgets.
class LeftToTheEnd
{
public:
  LeftToTheEnd()
  {
    if (__lsan_disable != nullptr)
      __lsan_disable();
  }
  LeftToTheEnd(const LeftToTheEnd&) = delete;
  LeftToTheEnd& operator=(const LeftToTheEnd&) = delete;
  ~LeftToTheEnd()
  {
    if (__lsan_enable != nullptr)
      __lsan_enable();
  }
};

#endif
