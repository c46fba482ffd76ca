#include "driver/Handles.h"

#include <gtest/gtest.h>

namespace {

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
