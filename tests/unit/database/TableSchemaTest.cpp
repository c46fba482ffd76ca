#include "database/TableSchema.h"

#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

TableColumn* AddColumn(TableSchema& schema, const wchar_t* name, int32_t type = SQL_WVARCHAR)
{
  schema.AddColumn(new TableColumn(name, type, 10));
  return schema.columns[schema.columnCount - 1];
}

Lines ColumnNames(const TableSchema& schema)
{
  Lines names;
  for (int i = 0; i < schema.columnCount; ++i)
    names.push_back(TextOf(schema.columns[i]->name));
  return names;
}

std::string Flags(const TableColumn& column)
{
  std::string flags;
  const struct
  {
    bool set;
    const char* name;
  } all[] = {{column.isKey, "key "},
             {column.isUnique, "unique "},
             {column.isNullable, "nullable "},
             {column.hasAlternate, "alternate "},
             {column.isHidden, "hidden "}};
  for (const auto& flag : all)
    flags += flag.set ? flag.name : "";
  return flags;
}

bool IsZero(const TableColumn& column, size_t bytes)
{
  const auto* first = reinterpret_cast<const unsigned char*>(column.valueBuffer);
  return std::all_of(first, first + bytes, [](unsigned char byte) { return byte == 0; });
}

}  // namespace

TEST(TableColumn, HasItsDescriptionAndNoFlags)
{
  const TableColumn column(L"Name", SQL_WVARCHAR, 255);
  EXPECT_EQ(TextOf(column.GetName()), "Name");
  EXPECT_EQ(column.sqlType, -9);
  EXPECT_EQ(column.size, 255);
  EXPECT_EQ(Flags(column), "");
  EXPECT_EQ(TextOf(column.GetAlternateName()), "");
}

TEST(TableColumn, HasRoomForItsSizeAndATerminator)
{
  const struct
  {
    int32_t size;
    SQLLEN bytes;
  } rows[] = {{0, 2}, {1, 4}, {10, 22}, {255, 512}, {65535, 131072}, {524287, 1048576}};
  for (const auto& row : rows)
    EXPECT_EQ(TableColumn(L"A", SQL_WVARCHAR, row.size).BufferBytes(), row.bytes) << row.size;
}

TEST(TableColumn, OfAMemoHasTheSizeOfAMemoWhateverIsReported)
{
  for (const int32_t size : {0, -1, 1, 255, 65535, 65536, 1073741823, 2147483647}) {
    const TableColumn column(L"A", SQL_WLONGVARCHAR, size);
    EXPECT_EQ(column.size, 65535) << size;
    EXPECT_EQ(column.BufferBytes(), 2 * 65536) << size;
  }
}

TEST(TableColumn, OfAnyOtherTypeHasItsOwnSize)
{
  for (int32_t type = -11; type < 100; ++type) {
    const int32_t expected = type == SQL_WLONGVARCHAR ? 65535 : 7;
    EXPECT_EQ(TableColumn(L"A", type, 7).size, expected) << type;
  }
}

TEST(TableColumn, OfASizeThatNoStatementCanCarryHasTheBufferOfAMemo)
{
  for (const int32_t size : {-1, -255, INT32_MIN, 524288, 1073741823, 2147483647}) {
    const TableColumn column(L"A", SQL_WVARCHAR, size);
    EXPECT_EQ(column.size, size);
    EXPECT_EQ(column.BufferBytes(), 131072) << size;
  }
}

TEST(TableColumn, OfTextBeginsWithAsManyZerosAsItHasCharacters)
{
  for (const int32_t size : {0, 1, 2, 10, 255, 4000}) {
    for (const int32_t type : {SQL_CHAR, SQL_VARCHAR, SQL_LONGVARCHAR, SQL_WCHAR, SQL_WVARCHAR}) {
      const TableColumn column(L"A", type, size);
      EXPECT_TRUE(IsZero(column, static_cast<size_t>(size) + 1)) << type << " " << size;
    }
  }
  EXPECT_TRUE(IsZero(TableColumn(L"A", SQL_WLONGVARCHAR, 0), 65536));
}

TEST(TableColumn, OfAFixedSizeBeginsWithZerosForAnyValue)
{
  for (const int32_t size : {0, 1, 3, 10, 19}) {
    for (const int32_t type : {SQL_BIT, SQL_INTEGER, SQL_DOUBLE, SQL_NUMERIC, SQL_TYPE_TIMESTAMP,
                               SQL_BIGINT, SQL_GUID, 99}) {
      const TableColumn column(L"A", type, size);
      EXPECT_TRUE(IsZero(column, 32)) << type << " " << size;
    }
  }
  EXPECT_TRUE(IsZero(TableColumn(L"A", SQL_BINARY, 255), 256));
}

TEST(TableColumn, MayBeFilledToTheEndOfWhatTheDriverIsTold)
{
  for (const int32_t size : {0, 1, 10, 255, 65535, 524287, 2147483647}) {
    const TableColumn column(L"A", SQL_WVARCHAR, size);
    const auto bytes = static_cast<size_t>(column.BufferBytes());
    memset(column.valueBuffer, 0xbd, bytes);
    EXPECT_EQ(reinterpret_cast<unsigned char*>(column.valueBuffer)[bytes - 1], 0xbd);
  }
}

TEST(TableColumn, CopiedHasItsDescriptionAndKeyAndABufferOfItsOwn)
{
  TableColumn source(L"Name", SQL_WVARCHAR, 20);
  source.isKey = source.isUnique = source.isNullable = source.hasAlternate = source.isHidden = true;
  source.alternateName.Assign(L"Nom");
  source.valueBuffer[0] = L'x';
  const TableColumn copy(source);
  EXPECT_EQ(TextOf(copy.name), "Name");
  EXPECT_EQ(copy.sqlType, SQL_WVARCHAR);
  EXPECT_EQ(copy.size, 20);
  EXPECT_EQ(Flags(copy), "key unique nullable ");
  EXPECT_EQ(TextOf(copy.alternateName), "");
  EXPECT_NE(copy.valueBuffer, source.valueBuffer);
  EXPECT_TRUE(IsZero(copy, 21));
}

TEST(TableColumn, CopiedTakesEachFlagOfTheKeyByItself)
{
  for (bool TableColumn::*flag :
       {&TableColumn::isKey, &TableColumn::isUnique, &TableColumn::isNullable}) {
    TableColumn source(L"Name", SQL_WVARCHAR, 20);
    source.*flag = true;
    EXPECT_EQ(Flags(TableColumn(source)), Flags(source));
  }
}

TEST(TableColumn, IsTheSameAsAnotherOfItsNameAndType)
{
  const TableColumn column(L"Name", SQL_WVARCHAR, 20);
  TableColumn other(L"NAME", SQL_WVARCHAR, 255);
  other.isNullable = other.isKey = true;
  EXPECT_TRUE(SameColumn(column, other));
  EXPECT_TRUE(SameColumn(other, column));
  EXPECT_FALSE(SameColumn(column, TableColumn(L"Name", SQL_WLONGVARCHAR, 20)));
  EXPECT_FALSE(SameColumn(column, TableColumn(L"Name", SQL_VARCHAR, 20)));
  EXPECT_FALSE(SameColumn(column, TableColumn(L"Names", SQL_WVARCHAR, 20)));
}

TEST(TableSchema, IsEmptyAtFirst)
{
  const TableSchema schema(L"Parts");
  EXPECT_EQ(TextOf(schema.GetTableName()), "Parts");
  EXPECT_EQ(schema.columnCount, 0);
  EXPECT_FALSE(schema.hasKey);
  EXPECT_TRUE(std::all_of(std::begin(schema.columns), std::end(schema.columns),
                          [](const TableColumn* column) { return column == nullptr; }));
}

TEST(TableSchema, KeepsColumnsInTheirOrder)
{
  TableSchema schema(L"Parts");
  AddColumn(schema, L"B");
  AddColumn(schema, L"A");
  EXPECT_EQ(ColumnNames(schema), (Lines{"B", "A"}));
  EXPECT_EQ(schema.columns[2], nullptr);
}

TEST(TableSchema, Holds255ColumnsAndDeletesMore)
{
  TableSchema schema(L"Parts");
  for (int i = 0; i < 300; ++i)
    schema.AddColumn(new TableColumn(Handle("C" + std::to_string(i)).Text(), SQL_INTEGER, 10));
  EXPECT_EQ(schema.columnCount, 255);
  EXPECT_EQ(TextOf(schema.columns[254]->name), "C254");
}

TEST(TableSchema, FindsTheFirstColumnOfANameInAnyCase)
{
  TableSchema schema(L"Parts");
  AddColumn(schema, L"Id");
  TableColumn* first = AddColumn(schema, L"Name");
  AddColumn(schema, L"NAME");
  EXPECT_EQ(schema.FindColumn(L"name"), first);
  EXPECT_EQ(schema.FindColumn(L"Nam"), nullptr);
  EXPECT_EQ(schema.FindColumn(L""), nullptr);
  EXPECT_EQ(TableSchema(L"Parts").FindColumn(L"Id"), nullptr);
}

TEST(TableSchema, HasTheKeyThatIsMarked)
{
  TableSchema schema(L"Parts");
  AddColumn(schema, L"Id");
  AddColumn(schema, L"Name")->isNullable = true;
  EXPECT_TRUE(schema.MarkKeyColumn(L"NAME"));
  EXPECT_EQ(Flags(*schema.columns[0]), "");
  EXPECT_EQ(Flags(*schema.columns[1]), "key unique ");
  EXPECT_TRUE(schema.hasKey);
}

TEST(TableSchema, MarksTheFirstColumnOfANameAlone)
{
  TableSchema schema(L"Parts");
  AddColumn(schema, L"Name");
  AddColumn(schema, L"name");
  EXPECT_TRUE(schema.MarkKeyColumn(L"name"));
  EXPECT_EQ(Flags(*schema.columns[0]), "key unique ");
  EXPECT_EQ(Flags(*schema.columns[1]), "");
}

TEST(TableSchema, HasNoKeyOfAColumnThatItLacks)
{
  TableSchema schema(L"Parts");
  AddColumn(schema, L"Id")->isNullable = true;
  EXPECT_FALSE(schema.MarkKeyColumn(L"Name"));
  EXPECT_EQ(Flags(*schema.columns[0]), "nullable ");
  EXPECT_FALSE(schema.hasKey);
}

TEST(TableSchema, MarkedTwiceIsAsMarkedOnce)
{
  TableSchema schema(L"Parts");
  AddColumn(schema, L"Id");
  EXPECT_TRUE(schema.MarkKeyColumn(L"Id"));
  EXPECT_TRUE(schema.MarkKeyColumn(L"Id"));
  EXPECT_EQ(Flags(*schema.columns[0]), "key unique ");
}

TEST(TableSchema, HasNoKeyByItsFirstColumn)
{
  TableSchema schema(L"Parts");
  AddColumn(schema, L"Id")->isNullable = true;
  AddColumn(schema, L"Name")->isNullable = true;
  schema.MarkFirstColumn();
  EXPECT_EQ(Flags(*schema.columns[0]), "key unique ");
  EXPECT_EQ(Flags(*schema.columns[1]), "nullable ");
  EXPECT_FALSE(schema.hasKey);
}

TEST(TableSchema, WithoutColumnsHasNoFirstOneToMark)
{
  TableSchema schema(L"Parts");
  schema.MarkFirstColumn();
  EXPECT_EQ(schema.columnCount, 0);
  EXPECT_FALSE(schema.hasKey);
}

TEST(TableSchema, CopiedLeavesOutHiddenColumnsWithoutGaps)
{
  TableSchema schema(L"Parts");
  AddColumn(schema, L"A")->isHidden = true;
  AddColumn(schema, L"B");
  AddColumn(schema, L"C")->isHidden = true;
  AddColumn(schema, L"D");
  const std::unique_ptr<TableSchema> copy(schema.CopyVisibleColumns());
  EXPECT_EQ(ColumnNames(*copy), (Lines{"B", "D"}));
  EXPECT_EQ(copy->columns[2], nullptr);
  EXPECT_NE(copy->columns[0], schema.columns[1]);
  EXPECT_EQ(ColumnNames(schema), (Lines{"A", "B", "C", "D"}));
}

TEST(TableSchema, CopiedTakesItsNameAndWhetherItHasAKey)
{
  TableSchema schema(L"Parts");
  AddColumn(schema, L"A");
  EXPECT_FALSE(std::unique_ptr<TableSchema>(schema.CopyVisibleColumns())->hasKey);
  EXPECT_TRUE(schema.MarkKeyColumn(L"A"));
  const std::unique_ptr<TableSchema> copy(schema.CopyVisibleColumns());
  EXPECT_TRUE(copy->hasKey);
  EXPECT_EQ(TextOf(copy->tableName), "Parts");
  EXPECT_EQ(Flags(*copy->columns[0]), "key unique ");
}

TEST(TableSchema, OfHiddenColumnsAloneIsCopiedEmpty)
{
  TableSchema schema(L"Parts");
  AddColumn(schema, L"A")->isHidden = true;
  EXPECT_EQ(std::unique_ptr<TableSchema>(schema.CopyVisibleColumns())->columnCount, 0);
}

TEST(TableSchema, OfAllItsColumnsIsCopiedWhole)
{
  TableSchema schema(L"Parts");
  for (int i = 0; i < TableSchema::Capacity; ++i)
    AddColumn(schema, L"A");
  EXPECT_EQ(std::unique_ptr<TableSchema>(schema.CopyVisibleColumns())->columnCount, 255);
}

TEST(TableColumn, OfTextIsEmptyAtFirst)
{
  for (const int32_t size : {0, 1, 2, 255, -1, 2147483647})
    EXPECT_EQ(Utf8(TableColumn(L"A", SQL_WVARCHAR, size).valueBuffer), "") << size;
}
