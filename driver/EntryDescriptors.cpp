// Entry points: the descriptors that a statement has of itself.

#include "driver/ColumnAttributes.h"
#include "driver/EntryText.h"
#include "driver/Statement.h"

namespace {

// Runs a call on a descriptor, with the statement's mutex held.
template <typename Call>
SQLRETURN WithDescriptor(SQLHDESC handle, const Call& call)
{
  DescriptorRole role = DescriptorRole::None;
  return WithObject<Statement>(FindDescriptor(handle, role), [&](Statement& statement) {
    statement.diagnostics.Clear();
    return call(statement, role);
  });
}

size_t RecordCount(Statement& statement, DescriptorRole role)
{
  switch (role) {
    case DescriptorRole::ApplicationRow: return statement.bindings.size();
    case DescriptorRole::ImplementationRow: return statement.Columns().size();
    default: return statement.parameters.size();
  }
}

// The fields of the whole descriptor; false if the field is none.
bool GetHeaderField(Statement& statement, DescriptorRole role, SQLSMALLINT field, SQLPOINTER value)
{
  const bool isRow =
      role == DescriptorRole::ApplicationRow || role == DescriptorRole::ImplementationRow;
  const StatementAttributes& attributes = statement.attributes;
  switch (field) {
    case SQL_DESC_ALLOC_TYPE: ReturnNumber<SQLSMALLINT>(value, SQL_DESC_ALLOC_AUTO); return true;
    case SQL_DESC_COUNT:
      ReturnNumber<SQLSMALLINT>(value, RecordCount(statement, role));
      return true;
    case SQL_DESC_ARRAY_SIZE: ReturnNumber<SQLULEN>(value, 1); return true;
    case SQL_DESC_BIND_TYPE:
      ReturnNumber<SQLINTEGER>(value,
                               isRow ? attributes.rowBindType : attributes.parameterBindType);
      return true;
    case SQL_DESC_BIND_OFFSET_PTR:
      if (value != nullptr)
        *static_cast<SQLULEN**>(value) =
            isRow ? attributes.rowBindOffset : attributes.parameterBindOffset;
      return true;
    case SQL_DESC_ARRAY_STATUS_PTR:
      if (value != nullptr)
        *static_cast<SQLUSMALLINT**>(value) =
            isRow ? attributes.rowStatus : attributes.parameterStatus;
      return true;
    case SQL_DESC_ROWS_PROCESSED_PTR:
      if (value != nullptr)
        *static_cast<SQLULEN**>(value) =
            isRow ? attributes.rowsFetched : attributes.parametersProcessed;
      return true;
    default: return false;
  }
}

// A binding in the common form of both kinds of application descriptors.
struct Binding
{
  SQLSMALLINT* cType;
  void** buffer;
  SQLLEN* capacity;
  SQLLEN** length;
  SQLLEN** indicator;
};

Binding FindBinding(Statement& statement, DescriptorRole role, size_t index)
{
  if (role == DescriptorRole::ApplicationRow) {
    Target& target = statement.bindings[index];
    return {&target.cType, &target.buffer, &target.capacity, &target.length, &target.indicator};
  }
  Parameter& parameter = statement.parameters[index];
  return {&parameter.cType, &parameter.value, &parameter.capacity, &parameter.length,
          &parameter.length};
}

SQLRETURN GetBindingField(Diagnostics& diagnostics, const Binding& binding, SQLSMALLINT field,
                          SQLPOINTER value)
{
  switch (field) {
    case SQL_DESC_TYPE:
    case SQL_DESC_CONCISE_TYPE: ReturnNumber<SQLSMALLINT>(value, *binding.cType); break;
    case SQL_DESC_OCTET_LENGTH: ReturnNumber<SQLLEN>(value, *binding.capacity); break;
    case SQL_DESC_DATA_PTR:
      if (value != nullptr)
        *static_cast<void**>(value) = *binding.buffer;
      break;
    case SQL_DESC_INDICATOR_PTR:
      if (value != nullptr)
        *static_cast<SQLLEN**>(value) = *binding.indicator;
      break;
    case SQL_DESC_OCTET_LENGTH_PTR:
      if (value != nullptr)
        *static_cast<SQLLEN**>(value) = *binding.length;
      break;
    default: return diagnostics.Fail("HY091", "The descriptor has no such field");
  }
  return SQL_SUCCESS;
}

SQLRETURN SetBindingField(Diagnostics& diagnostics, const Binding& binding, SQLSMALLINT field,
                          SQLPOINTER value)
{
  switch (field) {
    case SQL_DESC_TYPE:
    case SQL_DESC_CONCISE_TYPE:
      *binding.cType = static_cast<SQLSMALLINT>(reinterpret_cast<intptr_t>(value));
      return SQL_SUCCESS;
    case SQL_DESC_OCTET_LENGTH:
      *binding.capacity = reinterpret_cast<SQLLEN>(value);
      return SQL_SUCCESS;
    case SQL_DESC_DATA_PTR: *binding.buffer = value; return SQL_SUCCESS;
    case SQL_DESC_INDICATOR_PTR:
      *binding.indicator = static_cast<SQLLEN*>(value);
      return SQL_SUCCESS;
    case SQL_DESC_OCTET_LENGTH_PTR:
      *binding.length = static_cast<SQLLEN*>(value);
      return SQL_SUCCESS;
    // The figures of a buffer's number come from its column.
    case SQL_DESC_PRECISION:
    case SQL_DESC_SCALE: return SQL_SUCCESS;
    default: return diagnostics.Fail("HYC00", "The field of the descriptor can't be set");
  }
}

template <typename Character>
SQLRETURN GetField(SQLHDESC handle, SQLSMALLINT number, SQLSMALLINT field, SQLPOINTER value,
                   SQLINTEGER capacity, SQLINTEGER* length)
{
  return WithDescriptor(handle, [&](Statement& statement, DescriptorRole role) {
    Diagnostics& diagnostics = statement.diagnostics;
    if (GetHeaderField(statement, role, field, value))
      return SQLRETURN{SQL_SUCCESS};
    if (number <= 0)
      return diagnostics.Fail("07009", "Records are counted from 1");
    const size_t index = static_cast<size_t>(number) - 1;
    if (index >= RecordCount(statement, role))
      return SQLRETURN{SQL_NO_DATA};
    if (role == DescriptorRole::ImplementationParameter)
      return diagnostics.Fail("HYC00", "Parameters are not described");
    if (role != DescriptorRole::ImplementationRow)
      return GetBindingField(diagnostics, FindBinding(statement, role, index), field, value);
    const std::optional<ColumnAttribute> attribute =
        FindColumnAttribute(statement.Columns()[index], static_cast<SQLUSMALLINT>(field));
    if (!attribute)
      return diagnostics.Fail("HY091", "The descriptor has no such field");
    if (attribute->text)
      return ReturnText(diagnostics, *attribute->text, static_cast<Character*>(value), capacity,
                        length, Count::Bytes);
    const bool isLong = field == SQL_DESC_LENGTH || field == SQL_DESC_OCTET_LENGTH ||
                        field == SQL_DESC_DISPLAY_SIZE;
    if (isLong)
      ReturnNumber<SQLLEN>(value, attribute->number);
    else
      ReturnNumber<SQLSMALLINT>(value, attribute->number);
    return SQLRETURN{SQL_SUCCESS};
  });
}

}  // namespace

SQLRETURN SQL_API SQLGetDescField(SQLHDESC handle, SQLSMALLINT number, SQLSMALLINT field,
                                  SQLPOINTER value, SQLINTEGER capacity, SQLINTEGER* length)
{
  return GetField<SQLCHAR>(handle, number, field, value, capacity, length);
}

SQLRETURN SQL_API SQLGetDescFieldW(SQLHDESC handle, SQLSMALLINT number, SQLSMALLINT field,
                                   SQLPOINTER value, SQLINTEGER capacity, SQLINTEGER* length)
{
  return GetField<SQLWCHAR>(handle, number, field, value, capacity, length);
}

SQLRETURN SQL_API SQLSetDescField(SQLHDESC handle, SQLSMALLINT number, SQLSMALLINT field,
                                  SQLPOINTER value, SQLINTEGER /*length*/)
{
  return WithDescriptor(handle, [&](Statement& statement, DescriptorRole role) {
    Diagnostics& diagnostics = statement.diagnostics;
    if (role == DescriptorRole::ImplementationRow)
      return diagnostics.Fail("HY016", "The description of a result can't be changed");
    if (role == DescriptorRole::ImplementationParameter)
      return diagnostics.Fail("HYC00", "Parameters are described where they are bound");
    if (number <= 0)
      return diagnostics.Fail("HYC00", "The field of the descriptor can't be set");
    const size_t index = static_cast<size_t>(number) - 1;
    if (role == DescriptorRole::ApplicationRow && index >= statement.bindings.size())
      statement.bindings.resize(index + 1);
    if (index >= RecordCount(statement, role))
      return diagnostics.Fail("07009", "The parameter is not bound");
    return SetBindingField(diagnostics, FindBinding(statement, role, index), field, value);
  });
}

SQLRETURN SQL_API SQLSetDescFieldW(SQLHDESC handle, SQLSMALLINT number, SQLSMALLINT field,
                                   SQLPOINTER value, SQLINTEGER length)
{
  // No field that can be set is a text.
  return SQLSetDescField(handle, number, field, value, length);
}
