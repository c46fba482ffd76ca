// The part of Statement that is about the rows of a result: binding, fetching, reading.

#include <algorithm>
#include <cstring>

#include "driver/Statement.h"

SQLRETURN Statement::BindColumn(SQLUSMALLINT column, const Target& target)
{
  if (column == 0)
    return diagnostics.Fail("HYC00", "There are no bookmarks");
  if (!IsKnownCType(target.cType))
    return diagnostics.Fail("HY003", "This is no type of a buffer");
  if (target.capacity < 0)
    return diagnostics.Fail("HY090", "The length of the buffer is negative");
  if (cursorOpen && column > Columns().size())
    return diagnostics.Fail("07009", "The result has no such column");
  if (bindings.size() < column)
    bindings.resize(column);
  bindings[column - 1] = target;
  return SQL_SUCCESS;
}

SQLRETURN Statement::Fetch()
{
  if (!cursorOpen)
    return diagnostics.Fail("24000", "There is no result");
  partial = PartialRead();
  onRow = false;
  if (attributes.rowsFetched != nullptr)
    *attributes.rowsFetched = 0;
  if (attributes.maxRows != 0 && rowsDelivered == attributes.maxRows)
    atEnd = true;
  if (!atEnd && !rowWaits) {
    StartOperation();
    connection->SetWorking(this);
    const Step step = rows->Next();
    connection->SetWorking(nullptr);
    if (step == Step::Failed) {
      atEnd = true;
      return FailFromDatabase(static_cast<QueryRows&>(*rows).code);
    }
    atEnd = step == Step::End;
  }
  rowWaits = false;
  if (atEnd) {
    if (attributes.rowStatus != nullptr)
      *attributes.rowStatus = SQL_ROW_NOROW;
    return SQL_NO_DATA;
  }
  onRow = true;
  ++rowsDelivered;
  return DeliverRow();
}

namespace {

template <typename Pointer>
Pointer Shift(Pointer pointer, SQLULEN offset)
{
  return pointer == nullptr
             ? pointer
             // NOLINTNEXTLINE(performance-no-int-to-ptr): as far as the application has asked for.
             : reinterpret_cast<Pointer>(reinterpret_cast<uintptr_t>(pointer) + offset);
}

}  // namespace

SQLRETURN Statement::DeliverRow()
{
  SQLRETURN result = SQL_SUCCESS;
  const std::vector<ResultColumn>& columns = rows->Columns();
  const size_t count =
      attributes.retrieveData == SQL_RD_OFF ? 0 : std::min(bindings.size(), columns.size());
  const SQLULEN offset = attributes.rowBindOffset == nullptr ? 0 : *attributes.rowBindOffset;
  for (size_t i = 0; i < count; ++i) {
    Target target = bindings[i];
    if (target.buffer == nullptr && target.indicator == nullptr && target.length == nullptr)
      continue;
    if (offset != 0) {
      target.buffer = Shift(target.buffer, offset);
      target.length = Shift(target.length, offset);
      target.indicator = Shift(target.indicator, offset);
    }
    const SQLRETURN converted =
        ConvertCell(rows->Value(i), columns[i].columnType, target, diagnostics);
    if (converted == SQL_ERROR || (converted == SQL_SUCCESS_WITH_INFO && result == SQL_SUCCESS))
      result = converted;
  }
  if (attributes.rowsFetched != nullptr)
    *attributes.rowsFetched = 1;
  if (attributes.rowStatus != nullptr) {
    *attributes.rowStatus = result == SQL_ERROR     ? SQL_ROW_ERROR
                            : result == SQL_SUCCESS ? SQL_ROW_SUCCESS
                                                    : SQL_ROW_SUCCESS_WITH_INFO;
  }
  return result;
}

SQLRETURN Statement::GetData(SQLUSMALLINT column, const Target& wanted)
{
  if (!onRow)
    return diagnostics.Fail("24000", "The cursor is on no row");
  const std::vector<ResultColumn>& columns = rows->Columns();
  if (column == 0 || column > columns.size())
    return diagnostics.Fail("07009", "The result has no such column");
  Target target = wanted;
  const ColumnType& columnType = columns[column - 1].columnType;
  if (target.cType == SQL_ARD_TYPE)
    target.cType =
        column <= bindings.size() ? bindings[column - 1].cType : SQLSMALLINT{SQL_C_DEFAULT};
  if (target.cType == SQL_C_DEFAULT)
    target.cType = DefaultCType(columnType.type->sqlType);
  if (!IsKnownCType(target.cType))
    return diagnostics.Fail("HY003", "This is no type of a buffer");
  if (target.capacity < 0)
    return diagnostics.Fail("HY090", "The length of the buffer is negative");
  if (partial.column != column || partial.cType != target.cType) {
    partial = PartialRead();
    partial.column = column;
    partial.cType = target.cType;
  } else if (partial.finished) {
    return SQL_NO_DATA;
  }
  const Cell cell = rows->Value(column - 1);
  const bool inPieces = IsVariableCType(target.cType) &&
                        (cell.kind == CellKind::Text || cell.kind == CellKind::Binary);
  if (inPieces)
    return GetPiece(cell, columnType, target);
  const SQLRETURN result = ConvertCell(cell, columnType, target, diagnostics);
  partial.finished = SQL_SUCCEEDED(result);
  return result;
}

// Fills the buffer to its last unit, so that the pieces put together are the value: a piece may end
// within a character.
SQLRETURN Statement::GetPiece(const Cell& cell, const ColumnType& column, const Target& target)
{
  if (partial.offset == 0)
    partial.bytes = VariableBytes(cell, column.type->sqlType, target.cType);
  const size_t unit = target.cType == SQL_C_WCHAR ? sizeof(SQLWCHAR) : 1;
  const size_t terminator = target.cType == SQL_C_BINARY ? 0 : unit;
  const size_t left = partial.bytes.size() - partial.offset;
  const size_t capacity =
      target.buffer == nullptr ? 0 : static_cast<size_t>(target.capacity) / unit * unit;
  const size_t count = capacity < terminator ? 0 : std::min(left, capacity - terminator);
  if (target.length != nullptr)
    *target.length = static_cast<SQLLEN>(left);
  if (count > 0)
    memcpy(target.buffer, partial.bytes.data() + partial.offset, count);
  if (capacity >= terminator && terminator > 0)
    memset(static_cast<char*>(target.buffer) + count, 0, terminator);
  partial.offset += count;
  // A value is at its end only when its terminator has had room too.
  partial.finished = count == left && capacity >= terminator;
  if (!partial.finished)
    return diagnostics.Warn("01004", "More of the value is left than the buffer holds");
  return SQL_SUCCESS;
}
