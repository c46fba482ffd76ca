// Entry points: the attributes of a statement.

#include "driver/EntryText.h"
#include "driver/Statement.h"

namespace {

SQLULEN Number(SQLPOINTER value)
{
  return reinterpret_cast<SQLULEN>(value);
}

// Attributes that have one value only: where the program asks for another, it is told so.
struct FixedAttribute
{
  SQLINTEGER attribute;
  SQLULEN value;
};

const FixedAttribute FixedAttributes[] = {
    {SQL_ATTR_ASYNC_ENABLE, SQL_ASYNC_ENABLE_OFF},
    {SQL_ATTR_CONCURRENCY, SQL_CONCUR_READ_ONLY},
    {SQL_ATTR_CURSOR_TYPE, SQL_CURSOR_FORWARD_ONLY},
    {SQL_ATTR_CURSOR_SCROLLABLE, SQL_NONSCROLLABLE},
    {SQL_ATTR_CURSOR_SENSITIVITY, SQL_UNSPECIFIED},
    {SQL_ATTR_ENABLE_AUTO_IPD, SQL_FALSE},
    {SQL_ATTR_KEYSET_SIZE, 0},
    {SQL_ATTR_MAX_LENGTH, 0},
    {SQL_ATTR_PARAMSET_SIZE, 1},
    {SQL_ATTR_ROW_ARRAY_SIZE, 1},
    {SQL_ROWSET_SIZE, 1},
    {SQL_ATTR_SIMULATE_CURSOR, SQL_SC_NON_UNIQUE},
    {SQL_ATTR_USE_BOOKMARKS, SQL_UB_OFF},
};

const FixedAttribute* FindFixed(SQLINTEGER attribute)
{
  for (const FixedAttribute& fixed : FixedAttributes) {
    if (fixed.attribute == attribute)
      return &fixed;
  }
  return nullptr;
}

// The place of an attribute that is a number; null if it is none.
SQLULEN* FindNumber(StatementAttributes& attributes, SQLINTEGER attribute)
{
  switch (attribute) {
    case SQL_ATTR_QUERY_TIMEOUT: return &attributes.queryTimeout;
    case SQL_ATTR_MAX_ROWS: return &attributes.maxRows;
    case SQL_ATTR_NOSCAN: return &attributes.noScan;
    case SQL_ATTR_RETRIEVE_DATA: return &attributes.retrieveData;
    case SQL_ATTR_METADATA_ID: return &attributes.metadataId;
    case SQL_ATTR_ROW_BIND_TYPE: return &attributes.rowBindType;
    case SQL_ATTR_PARAM_BIND_TYPE: return &attributes.parameterBindType;
    default: return nullptr;
  }
}

// Stores or gives back an attribute that is an address; false if it is none.
template <typename Access>
bool WithPointer(StatementAttributes& attributes, SQLINTEGER attribute, const Access& access)
{
  switch (attribute) {
    case SQL_ATTR_ROW_BIND_OFFSET_PTR: access(attributes.rowBindOffset); return true;
    case SQL_ATTR_PARAM_BIND_OFFSET_PTR: access(attributes.parameterBindOffset); return true;
    case SQL_ATTR_ROWS_FETCHED_PTR: access(attributes.rowsFetched); return true;
    case SQL_ATTR_ROW_STATUS_PTR: access(attributes.rowStatus); return true;
    case SQL_ATTR_PARAMS_PROCESSED_PTR: access(attributes.parametersProcessed); return true;
    case SQL_ATTR_PARAM_STATUS_PTR: access(attributes.parameterStatus); return true;
    default: return false;
  }
}

DescriptorRole RoleOf(SQLINTEGER attribute)
{
  switch (attribute) {
    case SQL_ATTR_APP_ROW_DESC: return DescriptorRole::ApplicationRow;
    case SQL_ATTR_APP_PARAM_DESC: return DescriptorRole::ApplicationParameter;
    case SQL_ATTR_IMP_ROW_DESC: return DescriptorRole::ImplementationRow;
    case SQL_ATTR_IMP_PARAM_DESC: return DescriptorRole::ImplementationParameter;
    default: return DescriptorRole::None;
  }
}

// A program may set a descriptor back to the statement's own.
SQLRETURN SetDescriptor(Statement& statement, DescriptorRole role, SQLPOINTER value)
{
  const bool isApplications =
      role == DescriptorRole::ApplicationRow || role == DescriptorRole::ApplicationParameter;
  if (!isApplications)
    return statement.diagnostics.Fail("HY017", "The descriptor belongs to its statement");
  if (value == SQL_NULL_HDESC || value == DescriptorHandle(statement, role))
    return SQL_SUCCESS;
  return statement.diagnostics.Fail("HYC00", "Descriptors of the program are not supported");
}

SQLRETURN SetAttribute(Statement& statement, SQLINTEGER attribute, SQLPOINTER value)
{
  const DescriptorRole role = RoleOf(attribute);
  if (role != DescriptorRole::None)
    return SetDescriptor(statement, role, value);
  if (const FixedAttribute* const fixed = FindFixed(attribute)) {
    if (Number(value) == fixed->value)
      return SQL_SUCCESS;
    return statement.diagnostics.Warn("01S02", "The attribute keeps its usual value");
  }
  if (SQLULEN* const number = FindNumber(statement.attributes, attribute)) {
    *number = Number(value);
    return SQL_SUCCESS;
  }
  const bool isPointer = WithPointer(statement.attributes, attribute, [&](auto*& pointer) {
    pointer = static_cast<std::remove_reference_t<decltype(pointer)>>(value);
  });
  if (isPointer)
    return SQL_SUCCESS;
  if (attribute == SQL_ATTR_FETCH_BOOKMARK_PTR || attribute == SQL_ATTR_PARAM_OPERATION_PTR ||
      attribute == SQL_ATTR_ROW_OPERATION_PTR || attribute == SQL_ATTR_ROW_NUMBER) {
    return statement.diagnostics.Fail("HYC00", "The attribute is not supported");
  }
  return statement.diagnostics.Fail("HY092", "There is no such attribute");
}

SQLRETURN GetAttribute(Statement& statement, SQLINTEGER attribute, SQLPOINTER value,
                       SQLINTEGER* length)
{
  ReturnNumber<SQLINTEGER>(length, sizeof(SQLULEN));
  const DescriptorRole role = RoleOf(attribute);
  if (role != DescriptorRole::None) {
    if (value != nullptr)
      *static_cast<SQLHANDLE*>(value) = DescriptorHandle(statement, role);
    return SQL_SUCCESS;
  }
  if (const FixedAttribute* const fixed = FindFixed(attribute)) {
    ReturnNumber<SQLULEN>(value, fixed->value);
    return SQL_SUCCESS;
  }
  if (const SQLULEN* const number = FindNumber(statement.attributes, attribute)) {
    ReturnNumber<SQLULEN>(value, *number);
    return SQL_SUCCESS;
  }
  const bool isPointer = WithPointer(statement.attributes, attribute, [&](auto*& pointer) {
    if (value != nullptr)
      *static_cast<void**>(value) = pointer;
  });
  if (isPointer)
    return SQL_SUCCESS;
  if (attribute == SQL_ATTR_ROW_NUMBER) {
    ReturnNumber<SQLULEN>(value, statement.RowNumber());
    return SQL_SUCCESS;
  }
  if (attribute == SQL_ATTR_FETCH_BOOKMARK_PTR || attribute == SQL_ATTR_PARAM_OPERATION_PTR ||
      attribute == SQL_ATTR_ROW_OPERATION_PTR) {
    return statement.diagnostics.Fail("HYC00", "The attribute is not supported");
  }
  return statement.diagnostics.Fail("HY092", "There is no such attribute");
}

}  // namespace

SQLRETURN SQL_API SQLSetStmtAttr(SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value,
                                 SQLINTEGER /*length*/)
{
  return WithHandle<Statement>(
      handle, [&](Statement& statement) { return SetAttribute(statement, attribute, value); });
}

SQLRETURN SQL_API SQLSetStmtAttrW(SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value,
                                  SQLINTEGER length)
{
  // No attribute of a statement is a text.
  return SQLSetStmtAttr(handle, attribute, value, length);
}

SQLRETURN SQL_API SQLGetStmtAttr(SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value,
                                 SQLINTEGER /*capacity*/, SQLINTEGER* length)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    return GetAttribute(statement, attribute, value, length);
  });
}

SQLRETURN SQL_API SQLGetStmtAttrW(SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value,
                                  SQLINTEGER capacity, SQLINTEGER* length)
{
  return SQLGetStmtAttr(handle, attribute, value, capacity, length);
}
