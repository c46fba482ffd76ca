#ifndef DOUBLES_LIVEODBC_H
#define DOUBLES_LIVEODBC_H

// Real ODBC for natively built code: the machine's driver manager, and the driver of this
// repository. The diary, FailOdbcCall and the misuses stay what they are in OdbcDouble.h. The
// driver finds `C:\...` in the folder of the files double.

#include <initializer_list>
#include <string>
#include <vector>

// From now on and until ResetPlatform, all SQL* calls go to the driver manager, which reads
// odbcinst.ini in the folder. False, with a misuse that says what to build, if there is none.
bool UseLiveOdbc(const std::string& folder);

// The same with the driver that belongs to this build.
bool UseLiveOdbc();

// For a test that has called UseLiveOdbc. Makes the database if there is none at that path, and
// runs the statements on a connection of its own, which the diary doesn't show. Empty, or the
// statement that failed with the driver's words.
std::string RunSql(const std::string& path, std::initializer_list<std::string> statements);

// The rows of a query, each as its values with `|` between them, NULL as `<null>`. A query that
// fails gives one row that says so.
std::vector<std::string> SelectRows(const std::string& path, const std::string& query);

// The connection string that the code under test composes for a database at a path.
std::string ConnectionStringOf(const std::string& path);

#endif
