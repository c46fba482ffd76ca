#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

// The driver is registered by its folder of the build, and narrow text is UTF-8.
int main(int argumentCount, char** arguments)
{
  setenv("ODBCSYSINI", KESTREL_DRIVER_FOLDER, 1);
  setlocale(LC_ALL, "C.UTF-8");
  testing::InitGoogleTest(&argumentCount, arguments);
  return RUN_ALL_TESTS();
}
