#include "driver/ColumnAttributes.h"

namespace {

std::optional<std::string> FindText(const ResultColumn& column, SQLUSMALLINT field)
{
  const SQLSMALLINT sqlType = column.columnType.type->sqlType;
  const bool isQuoted = IsTextType(sqlType) || sqlType == SQL_TYPE_TIMESTAMP;
  switch (field) {
    case SQL_DESC_NAME:
    case SQL_DESC_LABEL:
    case SQL_COLUMN_NAME: return column.label;
    case SQL_DESC_BASE_COLUMN_NAME: return column.baseColumn;
    case SQL_DESC_TABLE_NAME:
    case SQL_DESC_BASE_TABLE_NAME: return column.baseTable;
    case SQL_DESC_CATALOG_NAME:
    case SQL_DESC_SCHEMA_NAME: return std::string();
    case SQL_DESC_TYPE_NAME:
    case SQL_DESC_LOCAL_TYPE_NAME: return column.columnType.type->name;
    case SQL_DESC_LITERAL_PREFIX: return IsBinaryType(sqlType) ? "x'" : isQuoted ? "'" : "";
    case SQL_DESC_LITERAL_SUFFIX: return IsBinaryType(sqlType) || isQuoted ? "'" : "";
    default: return std::nullopt;
  }
}

std::optional<SQLLEN> FindNumber(const ResultColumn& column, SQLUSMALLINT field)
{
  const ColumnType& type = column.columnType;
  const SQLSMALLINT sqlType = type.type->sqlType;
  const SQLSMALLINT digits = type.digits == NoDigits ? SQLSMALLINT{0} : type.digits;
  const bool isDate = sqlType == SQL_TYPE_TIMESTAMP;
  switch (field) {
    case SQL_DESC_CONCISE_TYPE: return sqlType;
    case SQL_DESC_TYPE: return VerboseType(sqlType);
    case SQL_DESC_DATETIME_INTERVAL_CODE: return DatetimeCode(sqlType);
    case SQL_DESC_LENGTH:
    case SQL_COLUMN_PRECISION: return static_cast<SQLLEN>(type.size);
    case SQL_DESC_PRECISION: return isDate ? digits : static_cast<SQLLEN>(type.size);
    case SQL_DESC_SCALE:
    case SQL_COLUMN_SCALE: return digits;
    case SQL_DESC_OCTET_LENGTH:
    case SQL_COLUMN_LENGTH: return TransferOctets(type);
    case SQL_DESC_DISPLAY_SIZE: return DisplaySize(type);
    case SQL_DESC_NULLABLE:
    case SQL_COLUMN_NULLABLE: return column.nullable;
    case SQL_DESC_AUTO_UNIQUE_VALUE: return column.countsByItself ? SQL_TRUE : SQL_FALSE;
    case SQL_DESC_CASE_SENSITIVE:
    case SQL_DESC_ROWVER: return SQL_FALSE;
    case SQL_DESC_FIXED_PREC_SCALE:
      return sqlType == SQL_NUMERIC && digits == 4 ? SQL_TRUE : SQL_FALSE;
    case SQL_DESC_NUM_PREC_RADIX: return IsNumberType(sqlType) ? 10 : 0;
    case SQL_DESC_SEARCHABLE: return IsTextType(sqlType) ? SQL_PRED_SEARCHABLE : SQL_PRED_BASIC;
    case SQL_DESC_UNNAMED: return column.label.empty() ? SQL_UNNAMED : SQL_NAMED;
    case SQL_DESC_UNSIGNED:
      return sqlType == SQL_TINYINT || !IsNumberType(sqlType) ? SQL_TRUE : SQL_FALSE;
    case SQL_DESC_UPDATABLE: return SQL_ATTR_READWRITE_UNKNOWN;
    default: return std::nullopt;
  }
}

}  // namespace

std::optional<ColumnAttribute> FindColumnAttribute(const ResultColumn& column, SQLUSMALLINT field)
{
  ColumnAttribute attribute;
  attribute.text = FindText(column, field);
  if (attribute.text)
    return attribute;
  const std::optional<SQLLEN> number = FindNumber(column, field);
  if (!number)
    return std::nullopt;
  attribute.number = *number;
  return attribute;
}
