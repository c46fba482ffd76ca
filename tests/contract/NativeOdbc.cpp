// The kinds of ODBC that native contract tests run on: the scripted double, told here what each
// statement of the tests gives, and the driver of this repository behind unixODBC.
#include "tests/contract/ContractTest.h"
#include "tests/contract/OdbcStatements.h"

#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/Text.h"

std::vector<std::string> OdbcKinds()
{
  return {"Script", "Driver"};
}

std::string NewDatabase(const std::string& kind)
{
  const std::string path = Utf8(ContractFolder) + "\\contract.mdb";
  if (kind == "Driver") {
    EXPECT_TRUE(UseLiveOdbc());
    Files().Put(path, "");
    return ConnectionStringOf(path);
  }
  OdbcDatabase& database = Odbc().Database(ConnectionStringOf(path));
  for (const wchar_t* statement : SetupStatements)
    database.Statement(Utf8(statement));
  database
      .Query(Utf8(SelectParts),
             {{1, "Bolt", 1}, {2, nullptr, 0}, {3, "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 0}})
      .Statement(Utf8(UpdateOfARow))
      .Statement(Utf8(UpdateOfNoRow), SQL_NO_DATA)
      .Statement(Utf8(DeleteOfNoRow), SQL_NO_DATA)
      .Columns("Parts",
               {{"Id", SQL_INTEGER, 10, 0}, {"Name", SQL_WVARCHAR, 20}, {"Used", SQL_BIT, 1}})
      .Tables({"Parts"});
  return ConnectionStringOf(path);
}
