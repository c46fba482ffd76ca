// The statements for one row of a table, with values of every type: each is what plain rules say,
// real SQL takes it as a single statement, and the values that it stores are those that went in.
#include "sql/CreateTableSql.h"
#include "sql/RowSql.h"
#include "sql/ValueSql.h"

#include "database/TableSchema.h"
#include "tests/doubles/Text.h"
#include "tests/fuzz/OneInput.h"
#include "tests/fuzz/Require.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <math.h>
#include <sqlite3.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

// What SQLite takes at most of a statement, in bytes of UTF-8.
constexpr size_t SqlLimit = 900000;

// A value as SQL has it.
struct SqlValue
{
  int type = SQLITE_NULL;
  std::string text;  // of text, and of blobs
  int64_t integer = 0;
  double real = 0;
};

// A column with its value, apart from the code under test.
struct Column
{
  std::string name;
  int sqlType = 0;
  int size = 0;
  bool isKey = false;     // in the target
  bool inTarget = true;   // with the same type
  int alternate = -1;     // index of the column with the text of this one
  std::string literal;    // in UTF-8, a lone surrogate as three bytes
  SqlValue value;         // what the literal is worth
  bool isLiteral = true;  // false if no SQL has such a value
};

bool IsText(int sqlType)
{
  return sqlType == SQL_WLONGVARCHAR || sqlType == SQL_WVARCHAR || sqlType == SQL_LONGVARCHAR ||
         sqlType == SQL_VARCHAR || sqlType == 99;
}

bool IsInteger(int sqlType)
{
  return sqlType == SQL_TINYINT || sqlType == SQL_SMALLINT || sqlType == SQL_INTEGER;
}

bool IsNumber(int sqlType)
{
  return sqlType == SQL_NUMERIC || sqlType == SQL_DECIMAL || sqlType == SQL_FLOAT ||
         sqlType == SQL_REAL || sqlType == SQL_DOUBLE;
}

bool IsTimestamp(int sqlType)
{
  return sqlType == SQL_TIMESTAMP || sqlType == SQL_TYPE_TIMESTAMP;
}

// The word of a column's definition; empty if there is none.
std::string WordOf(int sqlType)
{
  static const struct
  {
    int sqlType;
    const char* word;
  } words[] = {{SQL_WLONGVARCHAR, "MEMO"}, {SQL_LONGVARCHAR, "MEMO"},
               {SQL_WVARCHAR, "TEXT"},     {SQL_VARCHAR, "TEXT"},
               {SQL_BIT, "BIT"},           {SQL_TINYINT, "BYTE"},
               {SQL_SMALLINT, "SMALLINT"}, {SQL_INTEGER, "LONG"},
               {SQL_REAL, "REAL"},         {SQL_DECIMAL, "DECIMAL"},
               {SQL_NUMERIC, "DOUBLE"},    {SQL_DOUBLE, "DOUBLE"},
               {SQL_TIMESTAMP, "DATE"},    {SQL_TYPE_TIMESTAMP, "DATE"}};
  for (const auto& entry : words) {
    if (entry.sqlType == sqlType)
      return entry.word;
  }
  return {};
}

// A database in memory.
class Sql
{
public:
  Sql()
  {
    Require(sqlite3_open(":memory:", &database) == SQLITE_OK, "there is a database");
    (void)sqlite3_exec(database, "PRAGMA journal_mode=OFF", nullptr, nullptr, nullptr);
  }

  // Runs one statement and returns the values of its rows, or nothing if it is refused.
  std::optional<std::vector<SqlValue>> Run(const std::string& text)
  {
    sqlite3_stmt* statement = nullptr;
    const char* rest = nullptr;
    const int size = static_cast<int>(text.size());
    if (sqlite3_prepare_v2(database, text.data(), size, &statement, &rest) != SQLITE_OK)
      return std::nullopt;
    const std::string_view behind(rest, static_cast<size_t>(text.data() + size - rest));
    Require(behind.empty() && statement != nullptr, "a statement is a single one");
    Require(sqlite3_bind_parameter_count(statement) == 0, "no value becomes a parameter");
    std::vector<SqlValue> values;
    int code = sqlite3_step(statement);
    for (; code == SQLITE_ROW; code = sqlite3_step(statement)) {
      for (int i = 0; i < sqlite3_column_count(statement); ++i)
        values.push_back(ValueOf(statement, i));
    }
    (void)sqlite3_finalize(statement);
    return code == SQLITE_DONE ? std::optional(values) : std::nullopt;
  }

  void MustRun(const std::string& text)
  {
    Require(Run(text).has_value(), "the statements of the test itself are taken");
  }

  int Changes() const { return sqlite3_changes(database); }

private:
  static SqlValue ValueOf(sqlite3_stmt* statement, int column)
  {
    SqlValue value;
    value.type = sqlite3_column_type(statement, column);
    value.integer = sqlite3_column_int64(statement, column);
    value.real = sqlite3_column_double(statement, column);
    if (value.type == SQLITE_TEXT || value.type == SQLITE_BLOB) {
      const char* const bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
      value.text.assign(bytes == nullptr ? "" : bytes,
                        static_cast<size_t>(sqlite3_column_bytes(statement, column)));
    }
    return value;
  }

  sqlite3* database = nullptr;
};

bool AreEqual(const SqlValue& left, const SqlValue& right)
{
  if (left.type != right.type)
    return false;
  switch (left.type) {
    case SQLITE_NULL: return true;
    case SQLITE_INTEGER: return left.integer == right.integer;
    // SQLite is not exact in the last digits.
    case SQLITE_FLOAT: return fabs(left.real - right.real) <= fabs(right.real) * 1e-13;
    default: return left.text == right.text;
  }
}

// SQL's = of values that literals are worth. NULL equals nothing.
bool EqualsInSql(const SqlValue& left, const SqlValue& right)
{
  if (left.type == SQLITE_NULL || right.type == SQLITE_NULL)
    return false;
  if (left.type == SQLITE_TEXT || right.type == SQLITE_TEXT)
    return left.type == right.type && left.text == right.text;
  const auto number = [](const SqlValue& value) {
    return value.type == SQLITE_INTEGER ? static_cast<double>(value.integer) : value.real;
  };
  return number(left) == number(right);
}

void StoreText(FuzzedDataProvider& input, TableColumn& column)
{
  const size_t room = static_cast<size_t>(column.BufferBytes()) / sizeof(wchar_t);
  const wchar_t odd[] = {L'\'', L'[',      L']',      L'"',      L';',      L'-',    L'#',   L'%',
                         L'N',  L'\\',     L'\n',     L'?',      L' ',      L':',    L'@',   L'\0',
                         L'a',  L'\xD83D', L'\xDD29', L'\xFFFF', L'\xFEFF', L'\x80', L'\xE4'};
  size_t length = 0;
  while (length < room && input.remaining_bytes() > 0) {
    const uint8_t kind = input.ConsumeIntegral<uint8_t>();
    if (kind == 0)
      break;
    const bool isRun = kind >= 0xf0;
    const wchar_t unit = kind & 1 ? static_cast<wchar_t>(input.ConsumeIntegral<uint16_t>())
                                  : odd[kind / 2 % (sizeof(odd) / sizeof(odd[0]))];
    const size_t count = isRun ? input.ConsumeIntegral<uint16_t>() : 1;
    for (size_t i = 0; i < count && length < room; ++i)
      column.valueBuffer[length++] = unit;
  }
  // A driver that cuts a text may leave it without a terminator.
  if (length < room)
    column.valueBuffer[length] = L'\0';
}

std::string Quoted(const std::string& text)
{
  std::string quoted = "'";
  for (const char character : text)
    quoted.append(character == '\'' ? 2 : 1, character);
  return quoted + "'";
}

void ExpectText(const TableColumn& made, Column& column)
{
  const size_t room = static_cast<size_t>(made.BufferBytes()) / sizeof(wchar_t);
  const wchar_t* const end = std::find(made.valueBuffer, made.valueBuffer + room, L'\0');
  const size_t length = static_cast<size_t>(end - made.valueBuffer);
  if (length == 0) {
    column.literal = "NULL";
    return;
  }
  column.value.type = SQLITE_TEXT;
  column.value.text = Utf8(made.valueBuffer, length);
  column.literal = Quoted(column.value.text);
}

// True if the digits behind the sixth one of a number are just a half. Runtimes round that up or to
// an even digit.
bool IsHalf(double number)
{
  char text[1500];
  (void)snprintf(text, sizeof(text), "%.1100f", number);
  const std::string behind = std::string(text).substr(std::string(text).find('.') + 7);
  return behind[0] == '5' && behind.find_first_not_of('0', 1) == std::string::npos;
}

void ExpectNumber(double number, const std::string& made, Column& column)
{
  if (!isfinite(number)) {
    // Whatever the runtime calls it, it is a word that can do no harm.
    Require(made.find_first_not_of("0123456789abcdefnityABCDEFNITY.#+-") == std::string::npos,
            "what is no number is a word");
    column.literal = made;
    column.isLiteral = false;
    return;
  }
  char text[400];
  (void)snprintf(text, sizeof(text), "%f", number);
  column.literal = text;
  if (column.literal != made && IsHalf(number)) {
    const double difference = fabs(strtod(made.c_str(), nullptr) - number);
    Require(difference <= 0.00000051, "a half is rounded to one of its sides");
    column.literal = made;
  }
  column.value.type = SQLITE_FLOAT;
  column.value.real = strtod(column.literal.c_str(), nullptr);
}

void ExpectInteger(int number, Column& column)
{
  column.value.type = SQLITE_INTEGER;
  column.value.integer = number;
  column.literal = std::to_string(number);
}

template <typename Value>
Value Stored(FuzzedDataProvider& input, TableColumn& column)
{
  Value value = {};
  (void)input.ConsumeData(&value, sizeof(value));
  memcpy(column.valueBuffer, &value, sizeof(value));
  return value;
}

std::string LiteralOf(const TableColumn& column)
{
  return Utf8(ValueSql(column).Text());
}

// Puts a value into the buffer and works out what its literal has to be.
void Fill(FuzzedDataProvider& input, TableColumn& made, Column& column)
{
  if (IsText(column.sqlType)) {
    StoreText(input, made);
    ExpectText(made, column);
  } else if (column.sqlType == SQL_BIT) {
    ExpectInteger(Stored<uint8_t>(input, made), column);
  } else if (IsInteger(column.sqlType)) {
    ExpectInteger(Stored<int32_t>(input, made), column);
  } else if (IsNumber(column.sqlType)) {
    const double number = Stored<double>(input, made);
    ExpectNumber(number, LiteralOf(made), column);
  } else if (IsTimestamp(column.sqlType)) {
    const auto moment = Stored<SQL_TIMESTAMP_STRUCT>(input, made);
    column.value.type = SQLITE_TEXT;
    column.value.text = std::to_string(moment.day) + "/" + std::to_string(moment.month) + "/" +
                        std::to_string(moment.year);
    column.literal = Quoted(column.value.text);
  } else {
    (void)Stored<SQL_TIMESTAMP_STRUCT>(input, made);
    column.isLiteral = false;
  }
}

const char* const Names[] = {"Id",     "Name", "a b",   "'", "Ma\xC3\x9F", "x--",
                             "SELECT", "[y",   "\"q\"", ";", "%",          "/*"};

std::vector<Column> AnyColumns(FuzzedDataProvider& input, TableSchema& source, TableSchema& target)
{
  const int types[] = {
      SQL_WVARCHAR, SQL_VARCHAR,   SQL_WLONGVARCHAR,  SQL_LONGVARCHAR,    99,          SQL_BIT,
      SQL_TINYINT,  SQL_SMALLINT,  SQL_INTEGER,       SQL_NUMERIC,        SQL_DECIMAL, SQL_FLOAT,
      SQL_REAL,     SQL_DOUBLE,    SQL_TIMESTAMP,     SQL_TYPE_TIMESTAMP, SQL_CHAR,    SQL_WCHAR,
      SQL_BIGINT,   SQL_VARBINARY, SQL_LONGVARBINARY, SQL_TYPE_DATE,      0,           -32768};
  const int sizes[] = {0, 1, 2, 3, 5, 10, 20, 20, 50, 50, 255, 255, 255, -1, 524287, 2147483647};
  std::vector<Column> columns(input.ConsumeIntegralInRange<size_t>(1, 9));
  for (size_t i = 0; i < columns.size(); ++i) {
    Column& column = columns[i];
    const uint8_t flags = input.ConsumeIntegral<uint8_t>();
    column.name =
        std::string(Names[(i + flags) % (sizeof(Names) / sizeof(Names[0]))]) + std::to_string(i);
    column.sqlType = input.PickValueInArray(types);
    column.size = input.PickValueInArray(sizes);
    column.isKey = (flags & 0x10) != 0;
    column.inTarget = (flags & 0x60) != 0x60;
    const size_t alternate = flags & 0x0f;
    column.alternate =
        (flags & 0x80) != 0 && alternate < columns.size() ? static_cast<int>(alternate) : -1;
    auto* const made = new TableColumn(WideText(column.name).c_str(), column.sqlType, column.size);
    source.AddColumn(made);
    made->isKey = column.isKey;
    made->isNullable = (flags & 1) != 0;
    made->hasAlternate = (flags & 0x80) != 0;
    Fill(input, *made, column);
    // A column of the same name and of another type is another column.
    const int type = column.inTarget ? column.sqlType : column.sqlType + 1;
    auto* const partner = new TableColumn(WideText(column.name).c_str(), type, 1);
    target.AddColumn(partner);
    partner->isKey = column.isKey;
  }
  for (size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].alternate >= 0)
      source.columns[i]->alternateName = source.columns[columns[i].alternate]->name;
    else
      source.columns[i]->alternateName = L"absent";
  }
  return columns;
}

// The column whose literal counts for a column of the target.
const Column& Effective(const std::vector<Column>& columns, const Column& column)
{
  if (column.alternate < 0)
    return column;
  const Column& alternate = columns[static_cast<size_t>(column.alternate)];
  return alternate.literal == "NULL" ? column : alternate;
}

std::string Joined(const std::vector<std::string>& parts, const std::string& separator)
{
  std::string text;
  for (size_t i = 0; i < parts.size(); ++i)
    text += (i == 0 ? "" : separator) + parts[i];
  return text;
}

// What the statements for a row are and do.
struct Expected
{
  explicit Expected(const std::vector<Column>& columns)
  {
    for (const Column& column : columns) {
      if (!column.inTarget)
        continue;
      const Column& effective = Effective(columns, column);
      const std::string name = "[" + column.name + "]";
      names.push_back(name);
      literals.push_back(effective.literal);
      values.push_back(effective.value);
      ownTerms.push_back(name + "=" + column.literal);
      (column.isKey ? keyTerms : setTerms)
          .push_back(name + "=" + (column.isKey ? column.literal : effective.literal));
      areLiterals = areLiterals && effective.isLiteral;
      ownAreLiterals = ownAreLiterals && column.isLiteral;
      keyAreLiterals = keyAreLiterals && (!column.isKey || column.isLiteral);
      const bool isFound = EqualsInSql(column.value, effective.value);
      ownFindTheRow = ownFindTheRow && isFound;
      keyFindsTheRow = keyFindsTheRow && (!column.isKey || isFound);
    }
    for (const Column& column : columns) {
      if (column.isKey)
        allKeyTerms.push_back("[" + column.name + "]=" + column.literal);
    }
  }

  std::vector<std::string> names;
  std::vector<std::string> literals;
  std::vector<SqlValue> values;
  std::vector<std::string> ownTerms;
  std::vector<std::string> setTerms;
  std::vector<std::string> keyTerms;
  std::vector<std::string> allKeyTerms;  // of columns that the target lacks, too
  bool areLiterals = true;
  bool ownAreLiterals = true;
  bool keyAreLiterals = true;
  bool ownFindTheRow = true;
  bool keyFindsTheRow = true;
};

// T has two rows: one of other values, and the one that the statements are about.
void MakeTable(Sql& sql, const std::vector<Column>& columns)
{
  std::vector<std::string> names;
  for (const Column& column : columns)
    names.push_back("[" + column.name + "]");
  // Without declared types values stay what their literals say.
  sql.MustRun("CREATE TABLE T (" + Joined(names, ",") + ",other)");
  sql.MustRun("INSERT INTO T (other) VALUES (x'01')");
}

void RequireRow(Sql& sql, const Expected& expected)
{
  const auto stored = sql.Run("SELECT " + Joined(expected.names, ",") + " FROM T WHERE rowid=2");
  Require(stored && stored->size() == expected.values.size(), "the row is there once");
  for (size_t i = 0; i < stored->size(); ++i)
    Require(AreEqual((*stored)[i], expected.values[i]), "a stored value is what went in");
  const auto others = sql.Run("SELECT COUNT(*), (SELECT COUNT(*) FROM T) FROM T WHERE other=x'01'");
  Require((*others)[0].integer == 1 && (*others)[1].integer == 2, "no other row is touched");
}

size_t Units(const std::string& utf8)
{
  return WideText(utf8).Length();
}

// The statement that a builder makes, or nothing if it is beyond the limit, where the process ends.
template <typename Build>
std::optional<std::string> Built(OneInput& run, const std::string& expected, const Build& build)
{
  std::string made;
  const Ending ending = run.Run([&] { made = Utf8(build().Text()); });
  const bool fits = Units(expected) < static_cast<size_t>(QulStringLimit);
  Require(ending == (fits ? Ending::Returned : Ending::Fatal),
          "what is beyond the limit ends the process, and nothing else does");
  if (!fits)
    return std::nullopt;
  Require(made == expected, "a statement is as the rules have it");
  return made.size() < SqlLimit ? std::optional(made) : std::nullopt;
}

void CheckDelete(Sql& sql, const std::string& statement, bool isValid, bool findsTheRow)
{
  const auto result = sql.Run(statement);
  Require(result.has_value() == isValid, "a DELETE is taken if it has literals and a condition");
  if (isValid)
    Require(sql.Changes() == (findsTheRow ? 1 : 0), "a DELETE finds its row");
  Require((*sql.Run("SELECT COUNT(*) FROM T WHERE other=x'01'"))[0].integer == 1,
          "a DELETE leaves other rows alone");
}

void CheckUpdate(Sql& sql, const std::string& statement, const Expected& expected)
{
  std::vector<std::string> cleared;
  for (const std::string& term : expected.setTerms)
    cleared.push_back(term.substr(0, term.find("]=") + 2) + "x'FF'");
  if (!cleared.empty())
    sql.MustRun("UPDATE T SET " + Joined(cleared, ",") + " WHERE rowid=2");
  const bool isValid =
      !expected.setTerms.empty() && !expected.keyTerms.empty() && expected.keyAreLiterals;
  Require(sql.Run(statement).has_value() == isValid,
          "an UPDATE is taken if it has values and a condition");
  if (!isValid)
    return;
  Require(sql.Changes() == (expected.keyFindsTheRow ? 1 : 0), "an UPDATE finds its row by the key");
  if (expected.keyFindsTheRow)
    RequireRow(sql, expected);
}

void CheckStatements(OneInput& run, Sql& sql, const TableSchema& source, const TableSchema& target,
                     const std::vector<Column>& columns, bool deleteByKey)
{
  const Expected expected(columns);
  const auto insert = Built(run,
                            "INSERT INTO [T] (" + Joined(expected.names, ",") + ") VALUES (" +
                                Joined(expected.literals, ",") + ");",
                            [&] { return InsertSql(source, target); });
  const auto update = Built(run,
                            "UPDATE [T]  SET " + Joined(expected.setTerms, ",") + " WHERE " +
                                Joined(expected.keyTerms, " AND "),
                            [&] { return UpdateSql(source, target); });
  const auto matching =
      Built(run, "DELETE FROM T WHERE " + Joined(expected.ownTerms, " AND ") + ";",
            [&] { return DeleteMatchingSql(source, target); });
  const auto byKey =
      Built(run, "DELETE FROM T WHERE " + Joined(expected.allKeyTerms, " AND ") + ";",
            [&] { return DeleteByKeySql(source); });
  if (!insert || !update || !matching || !byKey)
    return;

  MakeTable(sql, columns);
  const bool inserts = !expected.names.empty() && expected.areLiterals;
  Require(sql.Run(*insert).has_value() == inserts, "an INSERT is taken if it has values");
  if (inserts) {
    RequireRow(sql, expected);
    CheckUpdate(sql, *update, expected);
    sql.MustRun("DELETE FROM T WHERE rowid=2");
    sql.MustRun(*insert);
    const bool allKeysInTarget = expected.allKeyTerms.size() == expected.keyTerms.size();
    if (!deleteByKey)
      CheckDelete(sql, *matching, expected.ownAreLiterals, expected.ownFindTheRow);
    else if (allKeysInTarget)
      CheckDelete(sql, *byKey, !expected.keyTerms.empty() && expected.keyAreLiterals,
                  expected.keyFindsTheRow);
  }
  sql.MustRun("DROP TABLE T");
}

void CheckLiterals(OneInput& run, Sql& sql, const TableSchema& source,
                   const std::vector<Column>& columns)
{
  for (size_t i = 0; i < columns.size(); ++i) {
    const Column& column = columns[i];
    const auto literal = Built(run, column.literal, [&] { return ValueSql(*source.columns[i]); });
    (void)Built(run, Effective(columns, column).literal,
                [&] { return EffectiveValueSql(source, *source.columns[i]); });
    if (!literal || !column.isLiteral)
      continue;
    const auto values = sql.Run("SELECT " + *literal);
    Require(values && values->size() == 1, "a literal is one value");
    Require(AreEqual(values->front(), column.value), "a value read back is what went in");
  }
}

void CheckCreate(OneInput& run, Sql& sql, const TableSchema& source,
                 const std::vector<Column>& columns)
{
  std::vector<std::string> definitions;
  std::vector<std::string> key;
  bool isValid = true;
  for (size_t i = 0; i < columns.size(); ++i) {
    const Column& column = columns[i];
    const std::string word = WordOf(column.sqlType);
    isValid = isValid && !word.empty();
    std::string definition;
    if (!word.empty())
      definition = "[" + column.name + "] " + word;
    if (word == "TEXT")
      definition += "(" + std::to_string(source.columns[i]->size) + ")";
    definitions.push_back(definition + (source.columns[i]->isNullable ? " NULL" : " NOT NULL"));
    if (column.isKey)
      key.push_back("[" + column.name + "]");
  }
  std::string expected = "CREATE TABLE T (" + Joined(definitions, " ,");
  if (!key.empty())
    expected += ",PRIMARY KEY (" + Joined(key, ",") + ")";
  const auto create = Built(run, expected + ");", [&] { return CreateTableSql(source); });
  Require(sql.Run(*create).has_value() == isValid, "a table is made if all types have words");
  if (!isValid)
    return;
  const auto made = sql.Run("SELECT name, pk > 0 FROM pragma_table_info('T')");
  Require(made && made->size() == columns.size() * 2, "a table has the columns that it was given");
  for (size_t i = 0; i < columns.size(); ++i) {
    Require((*made)[2 * i].text == columns[i].name, "a column has the name that it was given");
    Require((*made)[2 * i + 1].integer == columns[i].isKey, "the key has the columns of the key");
  }
  sql.MustRun("DROP TABLE T");
}

// A literal behind so much text that it is the last that fits, or the first that doesn't.
void CheckAtTheLimit(OneInput& run, const TableColumn& made, const Column& column, size_t wanted)
{
  static const std::vector<wchar_t> filler = [] {
    std::vector<wchar_t> text(QulStringLimit, L'x');
    text.back() = L'\0';
    return text;
  }();
  const size_t room = std::min(wanted, filler.size() - 1);
  const size_t before = filler.size() - 1 - room;
  std::string literal;
  const Ending ending = run.Run([&] {
    StatementText statement;
    statement.Append(filler.data() + room);
    AppendValueSql(statement, made);
    literal = Utf8(statement.Text() + before);
  });
  const bool fits = Units(column.literal) <= room;
  Require(ending == (fits ? Ending::Returned : Ending::Fatal),
          "what is beyond the limit ends the process, and nothing else does");
  Require(!fits || literal == column.literal, "what fits is whole");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  static Sql sql;
  OneInput run;
  {
    FuzzedDataProvider input(data, size);
    const uint8_t mode = input.ConsumeIntegralInRange<uint8_t>(0, 4);
    const size_t fromTheEnd = input.ConsumeIntegralInRange<size_t>(0, 10);
    TableSchema source(L"T");
    TableSchema target(L"T");
    const std::vector<Column> columns = AnyColumns(input, source, target);
    if (mode == 0)
      CheckLiterals(run, sql, source, columns);
    else if (mode == 1)
      CheckCreate(run, sql, source, columns);
    else if (mode == 4)
      CheckAtTheLimit(run, *source.columns[0], columns[0],
                      std::max<size_t>(Units(columns[0].literal), 2) - 2 + fromTheEnd);
    else
      CheckStatements(run, sql, source, target, columns, mode == 2);
  }
  Require(run.ArraysLeft() == 0, "all buffers are given back");
  return 0;
}
