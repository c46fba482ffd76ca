#ifndef UNIT_DATABASEMACHINE_H
#define UNIT_DATABASEMACHINE_H

// The databases of an update on a machine whose ODBC is scripted, and short forms of what they hold
// after reading.

#include "database/QulDatabase.h"
#include "database/QulPatchDatabase.h"
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/PlatformTest.h"

#include <memory>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;

// Return codes that are no success, all that a driver manager hands through among them.
inline const int FailureCodes[] = {SQL_ERROR, SQL_NO_DATA, SQL_INVALID_HANDLE, SQL_STILL_EXECUTING,
                                   SQL_NEED_DATA};
// The two that are.
inline const int SuccessCodes[] = {SQL_SUCCESS, SQL_SUCCESS_WITH_INFO};

// Base of the tests that open databases. Both databases let themselves be connected to once they
// are described. A test fails if it leaves a handle allocated.
class DatabaseMachine : public PlatformTest
{
protected:
  void TearDown() override;

  static OdbcDatabase& Target();
  static OdbcDatabase& Patch();

  // QuillBase and Spring.mdb, connected, with an empty diary.
  static std::unique_ptr<QulDatabase> OpenTarget();
  static std::unique_ptr<QulPatchDatabase> OpenPatch();

  static void SetLanguage(uint32_t languageId);
};

// An object that has no connection, and what it told about that taken out of the diary.
std::unique_ptr<QulDatabase> UnconnectedDatabase();

// Leaves no zeros where the next calls have their local variables, so that what they don't set
// isn't empty by chance. The address sanitizer keeps frames by sizes and hands them out in turn.
void SoilStack();

Lines TextsOf(const QulArray<QulString>& texts);

std::string Letters(int count, char letter = 'x');

// The diary after the last line that begins so.
Lines DiaryAfter(const std::string& beginning);

#endif
