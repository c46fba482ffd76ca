// What the last call on a handle has to say, record by record.

#ifndef DRIVER_DIAGNOSTICS_H
#define DRIVER_DIAGNOSTICS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "driver/Odbc.h"

struct DiagnosticRecord
{
  const char* state;  // five characters, of static storage
  SQLINTEGER nativeCode;
  std::string message;
};

class Diagnostics
{
public:
  void Clear();

  // Adds a record and returns SQL_ERROR.
  SQLRETURN Fail(const char* state, std::string_view text, SQLINTEGER nativeCode = 0);
  // Adds a record and returns SQL_SUCCESS_WITH_INFO.
  SQLRETURN Warn(const char* state, std::string_view text);
  // The same as Fail for memory that ran out; needs none itself.
  SQLRETURN FailOutOfMemory();

  size_t Count() const { return memoryExhausted ? 1 : records.size(); }
  // Counted from 0, below Count().
  const DiagnosticRecord& Record(size_t index) const;

private:
  std::vector<DiagnosticRecord> records;
  bool memoryExhausted = false;
};

#endif
