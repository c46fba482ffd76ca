// The part of Catalogue that lists the types.

#include "driver/Catalogue.h"

namespace {

constexpr SQLULEN NameLength = 128;

void AddTypeInfoColumns(StoredRows& rows)
{
  rows.AddColumn("TYPE_NAME", SQL_WVARCHAR, NameLength, false);
  rows.AddColumn("DATA_TYPE", SQL_SMALLINT, 0, false);
  rows.AddColumn("COLUMN_SIZE", SQL_INTEGER, 0, true);
  rows.AddColumn("LITERAL_PREFIX", SQL_WVARCHAR, NameLength, true);
  rows.AddColumn("LITERAL_SUFFIX", SQL_WVARCHAR, NameLength, true);
  rows.AddColumn("CREATE_PARAMS", SQL_WVARCHAR, NameLength, true);
  rows.AddColumn("NULLABLE", SQL_SMALLINT, 0, false);
  rows.AddColumn("CASE_SENSITIVE", SQL_SMALLINT, 0, false);
  rows.AddColumn("SEARCHABLE", SQL_SMALLINT, 0, false);
  rows.AddColumn("UNSIGNED_ATTRIBUTE", SQL_SMALLINT, 0, true);
  rows.AddColumn("FIXED_PREC_SCALE", SQL_SMALLINT, 0, false);
  rows.AddColumn("AUTO_UNIQUE_VALUE", SQL_SMALLINT, 0, true);
  rows.AddColumn("LOCAL_TYPE_NAME", SQL_WVARCHAR, NameLength, true);
  rows.AddColumn("MINIMUM_SCALE", SQL_SMALLINT, 0, true);
  rows.AddColumn("MAXIMUM_SCALE", SQL_SMALLINT, 0, true);
  rows.AddColumn("SQL_DATA_TYPE", SQL_SMALLINT, 0, false);
  rows.AddColumn("SQL_DATETIME_SUB", SQL_SMALLINT, 0, true);
  rows.AddColumn("NUM_PREC_RADIX", SQL_INTEGER, 0, true);
  rows.AddColumn("INTERVAL_PRECISION", SQL_SMALLINT, 0, true);
}

}  // namespace

std::unique_ptr<StoredRows> Catalogue::TypeInfo(SQLSMALLINT wanted)
{
  auto rows = std::make_unique<StoredRows>();
  AddTypeInfoColumns(*rows);
  if (wanted == SQL_TIMESTAMP)
    wanted = SQL_TYPE_TIMESTAMP;
  for (size_t i = 0; i < TypeTableSize; ++i) {
    const TypeDescription& type = TypeTable[i];
    if (wanted != SQL_ALL_TYPES && wanted != type.sqlType)
      continue;
    const SQLSMALLINT sqlType = type.sqlType;
    const std::string_view name = type.name;
    const SQLSMALLINT code = DatetimeCode(sqlType);
    const bool isText = IsTextType(sqlType);
    const bool isNumber = IsNumberType(sqlType);
    const bool isQuoted = isText || sqlType == SQL_TYPE_TIMESTAMP;
    const bool isBytes = IsBinaryType(sqlType);
    const bool takesScale = type.createParameters != nullptr && isNumber;
    const StoredValue scale = type.digits == NoDigits ? StoredValue() : StoredValue(type.digits);
    rows->AddRow({type.name,
                  sqlType,
                  static_cast<int64_t>(type.size),
                  isQuoted  ? "'"
                  : isBytes ? "x'"
                            : nullptr,
                  isQuoted || isBytes ? "'" : nullptr,
                  type.createParameters,
                  name == "COUNTER" ? SQL_NO_NULLS : SQL_NULLABLE,
                  SQL_FALSE,
                  isText ? SQL_SEARCHABLE : SQL_PRED_BASIC,
                  isNumber ? StoredValue(name == "BYTE" ? SQL_TRUE : SQL_FALSE) : StoredValue(),
                  name == "CURRENCY" ? SQL_TRUE : SQL_FALSE,
                  isNumber ? StoredValue(name == "COUNTER" ? SQL_TRUE : SQL_FALSE) : StoredValue(),
                  type.name,
                  takesScale ? StoredValue(0) : scale,
                  takesScale ? StoredValue(static_cast<int64_t>(type.size)) : scale,
                  VerboseType(sqlType),
                  code == 0 ? StoredValue() : StoredValue(code),
                  isNumber ? StoredValue(10) : StoredValue(),
                  {}});
  }
  return rows;
}
