#include "driver/Handles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "tests/driver/OdbcCalls.h"

namespace {

// How many more allocations of this program, and of the driver in it, succeed; all if negative.
int allocationsLeft = -1;

class AllocationLimit
{
public:
  explicit AllocationLimit(int count) { allocationsLeft = count; }
  ~AllocationLimit() { allocationsLeft = -1; }
  AllocationLimit(const AllocationLimit&) = delete;
  AllocationLimit& operator=(const AllocationLimit&) = delete;
};

class Object : public DriverObject
{
public:
  static constexpr SQLSMALLINT HandleKind = SQL_HANDLE_ENV;

  SQLSMALLINT Kind() const override { return HandleKind; }
  std::mutex& Mutex() override { return mutex; }

private:
  std::mutex mutex;
};

std::string FirstState(const Diagnostics& diagnostics)
{
  return diagnostics.Count() == 0 ? "none" : diagnostics.Record(0).state;
}

}  // namespace

void* operator new(size_t size)
{
  void* const memory = allocationsLeft == 0 ? nullptr : malloc(size > 0 ? size : 1);
  if (memory == nullptr)
    throw std::bad_alloc();
  if (allocationsLeft > 0)
    --allocationsLeft;
  return memory;
}

void operator delete(void* memory) noexcept
{
  free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
  free(memory);
}

TEST(Handles, EnvironmentThatMemoryDoesNotSufficeForIsAnErrorWithoutAHandle)
{
  const OdbcCalls& driver = DriverCalls(false);
  int failures = 0;
  SQLHENV environment = nullptr;
  const auto allocate = [&] {
    environment = &environment;  // anything but null
    const AllocationLimit limit(failures);
    return driver.AllocHandle(SQL_HANDLE_ENV, nullptr, &environment);
  };
  for (SQLRETURN result = allocate(); result != SQL_SUCCESS; result = allocate()) {
    EXPECT_EQ(result, SQL_ERROR);
    EXPECT_EQ(environment, nullptr);
    ASSERT_LT(++failures, 100);
  }
  EXPECT_GT(failures, 0);
  EXPECT_EQ(driver.FreeHandle(SQL_HANDLE_ENV, environment), SQL_SUCCESS);
}

TEST(Handles, CallThatMemoryDoesNotSufficeForIsToldAsSuch)
{
  const auto object = std::make_shared<Object>();
  RegisterHandle(object);
  const auto exhausted = [](Object&) -> SQLRETURN { throw std::bad_alloc(); };
  EXPECT_EQ(WithHandle<Object>(object->handle, exhausted), SQL_ERROR);
  EXPECT_EQ(object->diagnostics.Count(), 1U);
  EXPECT_EQ(FirstState(object->diagnostics), "HY001");
  EXPECT_EQ(WithHandle<Object>(object->handle, [](Object&) { return SQLRETURN{SQL_SUCCESS}; }),
            SQL_SUCCESS);
  EXPECT_EQ(FirstState(object->diagnostics), "none");
  ReleaseHandle(*object);
}

TEST(Handles, CallThatWaitedWhileTheHandleWasFreedFindsNothing)
{
  const auto object = std::make_shared<Object>();
  RegisterHandle(object);
  const std::shared_ptr<DriverObject> found = FindHandle(object->handle, SQL_HANDLE_ENV);
  ASSERT_EQ(found, object);
  ReleaseHandle(*object);
  bool called = false;
  const auto call = [&](Object&) {
    called = true;
    return SQLRETURN{SQL_SUCCESS};
  };
  EXPECT_EQ(WithObject<Object>(found, call), SQL_INVALID_HANDLE);
  EXPECT_FALSE(called);
}

TEST(Handles, ReleaseOfWhatHasNoHandleFreesNoPlace)
{
  const auto kept = std::make_shared<Object>();
  RegisterHandle(kept);
  Object never;
  ReleaseHandle(never);
  EXPECT_TRUE(never.released);
  EXPECT_EQ(FindHandle(kept->handle, SQL_HANDLE_ENV), kept);
  ReleaseHandle(*kept);
  EXPECT_EQ(FindHandle(kept->handle, SQL_HANDLE_ENV), nullptr);
}
