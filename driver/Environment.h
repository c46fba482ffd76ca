#ifndef DRIVER_ENVIRONMENT_H
#define DRIVER_ENVIRONMENT_H

#include <vector>

#include "driver/Handles.h"

class Environment : public DriverObject
{
public:
  static constexpr SQLSMALLINT HandleKind = SQL_HANDLE_ENV;

  SQLSMALLINT Kind() const override { return HandleKind; }
  std::mutex& Mutex() override { return mutex; }

  SQLINTEGER odbcVersion = 0;  // 0 until the program tells
  std::vector<SQLHANDLE> connections;

private:
  std::mutex mutex;
};

#endif
