#include "database/ValueKind.h"

#include <windows.h>
// The ODBC headers build on the one above.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

namespace {

// No type of ODBC's, taken for text.
constexpr int32_t UnnamedTextType = 99;

}  // namespace

ValueKind KindOfValue(int32_t sqlType)
{
  switch (sqlType) {
    case SQL_WLONGVARCHAR:
    case SQL_WVARCHAR:
    case SQL_LONGVARCHAR:
    case SQL_VARCHAR:
    case UnnamedTextType: return ValueKind::Text;
    case SQL_BIT: return ValueKind::Bit;
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER: return ValueKind::Integer;
    case SQL_NUMERIC:
    case SQL_DECIMAL:
    case SQL_FLOAT:
    case SQL_REAL:
    case SQL_DOUBLE: return ValueKind::Number;
    case SQL_TIMESTAMP:
    case SQL_TYPE_TIMESTAMP: return ValueKind::Timestamp;
    default: return ValueKind::None;
  }
}
