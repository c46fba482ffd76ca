// Entry points: what the driver is and what it can do.

#include <algorithm>

#include "driver/Connection.h"
#include "driver/EntryText.h"

namespace {

struct TextInfo
{
  SQLUSMALLINT type;
  const char* value;
};

struct NumberInfo
{
  SQLUSMALLINT type;
  SQLUINTEGER value;
};

// Keywords of SQLite's that ODBC doesn't reserve.
const char* const Keywords =
    "ABORT,ANALYZE,ATTACH,AUTOINCREMENT,BEFORE,CONFLICT,DATABASE,DETACH,EACH,EXPLAIN,FAIL,GLOB,"
    "IGNORE,"
    "INDEXED,INSTEAD,ISNULL,LIMIT,NOTNULL,OFFSET,PLAN,PRAGMA,QUERY,RAISE,REGEXP,REINDEX,RENAME,"
    "REPLACE,ROW,SAVEPOINT,TEMP,TRIGGER,VACUUM,VIRTUAL";

const TextInfo TextInfos[] = {
    {SQL_ACCESSIBLE_PROCEDURES, "N"},
    {SQL_ACCESSIBLE_TABLES, "Y"},
    {SQL_CATALOG_NAME, "N"},
    {SQL_CATALOG_NAME_SEPARATOR, ""},
    {SQL_CATALOG_TERM, ""},
    {SQL_COLLATION_SEQ, ""},
    {SQL_COLUMN_ALIAS, "Y"},
    {SQL_DATA_SOURCE_NAME, ""},
    {SQL_DBMS_NAME, "SQLite"},
    {SQL_DESCRIBE_PARAMETER, "N"},
    {SQL_DRIVER_NAME, "libkestrelodbc.so"},
    {SQL_DRIVER_ODBC_VER, "03.00"},
    {SQL_DRIVER_VER, "01.00.0000"},
    {SQL_EXPRESSIONS_IN_ORDERBY, "Y"},
    {SQL_IDENTIFIER_QUOTE_CHAR, "`"},
    {SQL_INTEGRITY, "N"},
    {SQL_KEYWORDS, Keywords},
    {SQL_LIKE_ESCAPE_CLAUSE, "Y"},
    {SQL_MAX_ROW_SIZE_INCLUDES_LONG, "Y"},
    {SQL_MULT_RESULT_SETS, "N"},
    {SQL_MULTIPLE_ACTIVE_TXN, "Y"},
    {SQL_NEED_LONG_DATA_LEN, "N"},
    {SQL_ORDER_BY_COLUMNS_IN_SELECT, "N"},
    {SQL_OUTER_JOINS, "Y"},
    {SQL_PROCEDURE_TERM, ""},
    {SQL_PROCEDURES, "N"},
    {SQL_ROW_UPDATES, "N"},
    {SQL_SCHEMA_TERM, ""},
    {SQL_SEARCH_PATTERN_ESCAPE, "\\"},
    {SQL_SERVER_NAME, ""},
    {SQL_SPECIAL_CHARACTERS, " !#$%&()*+,-./:;<=>?@\\^{|}~"},
    {SQL_TABLE_TERM, "table"},
    {SQL_USER_NAME, ""},
    {SQL_XOPEN_CLI_YEAR, "1995"},
};

// Values of 16 bits.
const NumberInfo ShortInfos[] = {
    {SQL_ACTIVE_ENVIRONMENTS, 0},
    {SQL_CATALOG_LOCATION, 0},
    {SQL_CONCAT_NULL_BEHAVIOR, SQL_CB_NULL},
    {SQL_CORRELATION_NAME, SQL_CN_ANY},
    {SQL_CURSOR_COMMIT_BEHAVIOR, SQL_CB_PRESERVE},
    {SQL_CURSOR_ROLLBACK_BEHAVIOR, SQL_CB_CLOSE},
    {SQL_FILE_USAGE, SQL_FILE_CATALOG},
    {SQL_GROUP_BY, SQL_GB_NO_RELATION},
    {SQL_IDENTIFIER_CASE, SQL_IC_MIXED},
    {SQL_MAX_CATALOG_NAME_LEN, 0},
    {SQL_MAX_COLUMN_NAME_LEN, 0},
    {SQL_MAX_COLUMNS_IN_GROUP_BY, 0},
    {SQL_MAX_COLUMNS_IN_INDEX, 0},
    {SQL_MAX_COLUMNS_IN_ORDER_BY, 0},
    {SQL_MAX_COLUMNS_IN_SELECT, 2000},
    {SQL_MAX_COLUMNS_IN_TABLE, 2000},
    {SQL_MAX_CONCURRENT_ACTIVITIES, 0},
    {SQL_MAX_CURSOR_NAME_LEN, 0},
    {SQL_MAX_DRIVER_CONNECTIONS, 0},
    {SQL_MAX_IDENTIFIER_LEN, 0},
    {SQL_MAX_PROCEDURE_NAME_LEN, 0},
    {SQL_MAX_SCHEMA_NAME_LEN, 0},
    {SQL_MAX_TABLE_NAME_LEN, 0},
    {SQL_MAX_TABLES_IN_SELECT, 64},
    {SQL_MAX_USER_NAME_LEN, 0},
    {SQL_NON_NULLABLE_COLUMNS, SQL_NNC_NON_NULL},
    {SQL_NULL_COLLATION, SQL_NC_LOW},
    {SQL_ODBC_API_CONFORMANCE, SQL_OAC_LEVEL1},
    {SQL_ODBC_SAG_CLI_CONFORMANCE, SQL_OSCC_COMPLIANT},
    {SQL_ODBC_SQL_CONFORMANCE, SQL_OSC_CORE},
    {SQL_QUOTED_IDENTIFIER_CASE, SQL_IC_MIXED},
    {SQL_TXN_CAPABLE, SQL_TC_ALL},
};

// Values of 32 bits.
const NumberInfo LongInfos[] = {
    {SQL_AGGREGATE_FUNCTIONS, SQL_AF_ALL | SQL_AF_AVG | SQL_AF_COUNT | SQL_AF_DISTINCT |
                                  SQL_AF_MAX | SQL_AF_MIN | SQL_AF_SUM},
    {SQL_ALTER_TABLE, SQL_AT_ADD_COLUMN_SINGLE},
    {SQL_ASYNC_MODE, SQL_AM_NONE},
    {SQL_BATCH_ROW_COUNT, 0},
    {SQL_BATCH_SUPPORT, 0},
    {SQL_BOOKMARK_PERSISTENCE, 0},
    {SQL_CATALOG_USAGE, 0},
    {SQL_CREATE_TABLE, SQL_CT_CREATE_TABLE | SQL_CT_COLUMN_CONSTRAINT | SQL_CT_COLUMN_DEFAULT |
                           SQL_CT_TABLE_CONSTRAINT},
    {SQL_CREATE_VIEW, SQL_CV_CREATE_VIEW},
    {SQL_CURSOR_SENSITIVITY, SQL_UNSPECIFIED},
    {SQL_DEFAULT_TXN_ISOLATION, SQL_TXN_SERIALIZABLE},
    {SQL_DROP_TABLE, SQL_DT_DROP_TABLE},
    {SQL_DROP_VIEW, SQL_DV_DROP_VIEW},
    {SQL_DYNAMIC_CURSOR_ATTRIBUTES1, 0},
    {SQL_DYNAMIC_CURSOR_ATTRIBUTES2, 0},
    {SQL_FORWARD_ONLY_CURSOR_ATTRIBUTES1, SQL_CA1_NEXT},
    {SQL_FORWARD_ONLY_CURSOR_ATTRIBUTES2, SQL_CA2_READ_ONLY_CONCURRENCY | SQL_CA2_MAX_ROWS_SELECT},
    {SQL_GETDATA_EXTENSIONS, SQL_GD_ANY_COLUMN | SQL_GD_ANY_ORDER | SQL_GD_BOUND},
    {SQL_INDEX_KEYWORDS, SQL_IK_ASC | SQL_IK_DESC},
    {SQL_INFO_SCHEMA_VIEWS, 0},
    {SQL_INSERT_STATEMENT, SQL_IS_INSERT_LITERALS | SQL_IS_INSERT_SEARCHED | SQL_IS_SELECT_INTO},
    {SQL_KEYSET_CURSOR_ATTRIBUTES1, 0},
    {SQL_KEYSET_CURSOR_ATTRIBUTES2, 0},
    {SQL_MAX_ASYNC_CONCURRENT_STATEMENTS, 0},
    {SQL_MAX_BINARY_LITERAL_LEN, 0},
    {SQL_MAX_CHAR_LITERAL_LEN, 0},
    {SQL_MAX_INDEX_SIZE, 0},
    {SQL_MAX_ROW_SIZE, 0},
    {SQL_MAX_STATEMENT_LEN, 0},
    {SQL_NUMERIC_FUNCTIONS, 0},
    {SQL_ODBC_INTERFACE_CONFORMANCE, SQL_OIC_CORE},
    {SQL_OJ_CAPABILITIES, SQL_OJ_LEFT | SQL_OJ_NESTED | SQL_OJ_INNER | SQL_OJ_ALL_COMPARISON_OPS},
    {SQL_PARAM_ARRAY_ROW_COUNTS, SQL_PARC_NO_BATCH},
    {SQL_PARAM_ARRAY_SELECTS, SQL_PAS_NO_SELECT},
    {SQL_SCHEMA_USAGE, 0},
    {SQL_SCROLL_OPTIONS, SQL_SO_FORWARD_ONLY},
    {SQL_SQL_CONFORMANCE, SQL_SC_SQL92_ENTRY},
    {SQL_STATIC_CURSOR_ATTRIBUTES1, 0},
    {SQL_STATIC_CURSOR_ATTRIBUTES2, 0},
    {SQL_STRING_FUNCTIONS, 0},
    {SQL_SUBQUERIES, SQL_SQ_COMPARISON | SQL_SQ_EXISTS | SQL_SQ_IN | SQL_SQ_CORRELATED_SUBQUERIES},
    {SQL_SYSTEM_FUNCTIONS, 0},
    {SQL_TIMEDATE_FUNCTIONS, 0},
    {SQL_TXN_ISOLATION_OPTION, SQL_TXN_SERIALIZABLE},
    {SQL_UNION, SQL_U_UNION | SQL_U_UNION_ALL},
    // Types are converted by CAST alone, so there is nothing to tell for any of them.
    {SQL_CONVERT_FUNCTIONS, 0},
    {SQL_CONVERT_BIGINT, 0},
    {SQL_CONVERT_BINARY, 0},
    {SQL_CONVERT_BIT, 0},
    {SQL_CONVERT_CHAR, 0},
    {SQL_CONVERT_DATE, 0},
    {SQL_CONVERT_DECIMAL, 0},
    {SQL_CONVERT_DOUBLE, 0},
    {SQL_CONVERT_FLOAT, 0},
    {SQL_CONVERT_INTEGER, 0},
    {SQL_CONVERT_LONGVARBINARY, 0},
    {SQL_CONVERT_LONGVARCHAR, 0},
    {SQL_CONVERT_NUMERIC, 0},
    {SQL_CONVERT_REAL, 0},
    {SQL_CONVERT_SMALLINT, 0},
    {SQL_CONVERT_TIME, 0},
    {SQL_CONVERT_TIMESTAMP, 0},
    {SQL_CONVERT_TINYINT, 0},
    {SQL_CONVERT_VARBINARY, 0},
    {SQL_CONVERT_VARCHAR, 0},
    {SQL_CONVERT_WCHAR, 0},
    {SQL_CONVERT_WLONGVARCHAR, 0},
    {SQL_CONVERT_WVARCHAR, 0},
};

template <typename Info, size_t Count>
const Info* Find(const Info (&infos)[Count], SQLUSMALLINT type)
{
  const Info* const end = infos + Count;
  const Info* const found =
      std::find_if(infos, end, [&](const Info& info) { return info.type == type; });
  return found == end ? nullptr : found;
}

// What depends on the connection; nothing for all else.
std::optional<std::string> FindConnectionText(const Connection& connection, SQLUSMALLINT type)
{
  switch (type) {
    case SQL_DATABASE_NAME:
      return connection.IsConnected() ? connection.database->Path() : std::string();
    case SQL_DBMS_VER: {
      // major.minor.release, each with its full number of digits
      const int version = sqlite3_libversion_number();
      char text[32];
      (void)snprintf(text, sizeof(text), "%02d.%02d.%04d", version / 1000000, version / 1000 % 1000,
                     version % 1000);
      return text;
    }
    case SQL_DATA_SOURCE_READ_ONLY:
      return connection.IsConnected() && connection.database->IsReadOnly() ? "Y" : "N";
    case SQL_DATA_SOURCE_NAME: {
      const std::string* const source = connection.connectedWith.Find("DSN");
      return source == nullptr ? std::string() : *source;
    }
    default: return std::nullopt;
  }
}

template <typename Character>
SQLRETURN GetInfo(SQLHDBC handle, SQLUSMALLINT type, SQLPOINTER value, SQLSMALLINT capacity,
                  SQLSMALLINT* length)
{
  return WithHandle<Connection>(handle, [&](Connection& connection) {
    std::optional<std::string> text = FindConnectionText(connection, type);
    if (!text) {
      if (const TextInfo* const info = Find(TextInfos, type))
        text = info->value;
    }
    if (text)
      return ReturnText(connection.diagnostics, *text, static_cast<Character*>(value), capacity,
                        length, Count::Bytes);
    if (const NumberInfo* const info = Find(ShortInfos, type)) {
      ReturnNumber<SQLUSMALLINT>(value, info->value);
      ReturnNumber<SQLSMALLINT>(length, sizeof(SQLUSMALLINT));
      return SQLRETURN{SQL_SUCCESS};
    }
    if (const NumberInfo* const info = Find(LongInfos, type)) {
      ReturnNumber<SQLUINTEGER>(value, info->value);
      ReturnNumber<SQLSMALLINT>(length, sizeof(SQLUINTEGER));
      return SQLRETURN{SQL_SUCCESS};
    }
    return connection.diagnostics.Fail("HY096", "There is no such information");
  });
}

const SQLUSMALLINT SupportedFunctions[] = {
    SQL_API_SQLALLOCHANDLE,    SQL_API_SQLBINDCOL,        SQL_API_SQLBINDPARAMETER,
    SQL_API_SQLCANCEL,         SQL_API_SQLCLOSECURSOR,    SQL_API_SQLCOLATTRIBUTE,
    SQL_API_SQLCOLUMNS,        SQL_API_SQLCONNECT,        SQL_API_SQLDESCRIBECOL,
    SQL_API_SQLDESCRIBEPARAM,  SQL_API_SQLDISCONNECT,     SQL_API_SQLDRIVERCONNECT,
    SQL_API_SQLENDTRAN,        SQL_API_SQLEXECDIRECT,     SQL_API_SQLEXECUTE,
    SQL_API_SQLFETCH,          SQL_API_SQLFETCHSCROLL,    SQL_API_SQLFREEHANDLE,
    SQL_API_SQLFREESTMT,       SQL_API_SQLGETCONNECTATTR, SQL_API_SQLGETCURSORNAME,
    SQL_API_SQLGETDATA,        SQL_API_SQLGETDESCFIELD,   SQL_API_SQLGETDIAGFIELD,
    SQL_API_SQLGETDIAGREC,     SQL_API_SQLGETENVATTR,     SQL_API_SQLGETFUNCTIONS,
    SQL_API_SQLGETINFO,        SQL_API_SQLGETSTMTATTR,    SQL_API_SQLGETTYPEINFO,
    SQL_API_SQLMORERESULTS,    SQL_API_SQLNATIVESQL,      SQL_API_SQLNUMPARAMS,
    SQL_API_SQLNUMRESULTCOLS,  SQL_API_SQLPARAMDATA,      SQL_API_SQLPREPARE,
    SQL_API_SQLPRIMARYKEYS,    SQL_API_SQLPUTDATA,        SQL_API_SQLROWCOUNT,
    SQL_API_SQLSETCONNECTATTR, SQL_API_SQLSETCURSORNAME,  SQL_API_SQLSETDESCFIELD,
    SQL_API_SQLSETENVATTR,     SQL_API_SQLSETSTMTATTR,    SQL_API_SQLSPECIALCOLUMNS,
    SQL_API_SQLSTATISTICS,     SQL_API_SQLTABLES,
};

constexpr size_t Odbc2FunctionCount = 100;

}  // namespace

SQLRETURN SQL_API SQLGetInfo(SQLHDBC handle, SQLUSMALLINT type, SQLPOINTER value,
                             SQLSMALLINT capacity, SQLSMALLINT* length)
{
  return GetInfo<SQLCHAR>(handle, type, value, capacity, length);
}

SQLRETURN SQL_API SQLGetInfoW(SQLHDBC handle, SQLUSMALLINT type, SQLPOINTER value,
                              SQLSMALLINT capacity, SQLSMALLINT* length)
{
  return GetInfo<SQLWCHAR>(handle, type, value, capacity, length);
}

SQLRETURN SQL_API SQLGetFunctions(SQLHDBC handle, SQLUSMALLINT function, SQLUSMALLINT* supported)
{
  return WithHandle<Connection>(handle, [&](Connection& connection) {
    if (supported == nullptr)
      return connection.diagnostics.Fail("HY009", "There is no place for the answer");
    if (function == SQL_API_ODBC3_ALL_FUNCTIONS) {
      std::fill_n(supported, SQL_API_ODBC3_ALL_FUNCTIONS_SIZE, SQLUSMALLINT{0});
      for (const SQLUSMALLINT known : SupportedFunctions) {
        SQLUSMALLINT& word = supported[known >> 4];
        word = static_cast<SQLUSMALLINT>(word | (1U << (known & 0xf)));
      }
      return SQLRETURN{SQL_SUCCESS};
    }
    if (function == SQL_API_ALL_FUNCTIONS) {
      std::fill_n(supported, Odbc2FunctionCount, SQLUSMALLINT{SQL_FALSE});
      for (const SQLUSMALLINT known : SupportedFunctions) {
        if (known < Odbc2FunctionCount)
          supported[known] = SQL_TRUE;
      }
      return SQLRETURN{SQL_SUCCESS};
    }
    *supported = std::find(std::begin(SupportedFunctions), std::end(SupportedFunctions),
                           function) == std::end(SupportedFunctions)
                     ? SQL_FALSE
                     : SQL_TRUE;
    return SQLRETURN{SQL_SUCCESS};
  });
}
