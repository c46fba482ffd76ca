// The descriptors that a statement has of itself, as the driver keeps them.

#include "tests/driver/ConformanceTest.h"

namespace {

class Descriptor : public ConformanceTest
{
protected:
  SQLHDESC Of(SQLINTEGER attribute) const
  {
    SQLHDESC descriptor = nullptr;
    EXPECT_EQ(calls.GetStatementAttribute(stmt, attribute, &descriptor), SQL_SUCCESS);
    return descriptor;
  }

  template <typename Value>
  Value Get(SQLHDESC descriptor, SQLSMALLINT record, SQLSMALLINT field) const
  {
    Value value = {};
    EXPECT_EQ(calls.GetDescriptorField(descriptor, record, field, &value), SQL_SUCCESS) << field;
    return value;
  }

  std::string GetText(SQLHDESC descriptor, SQLSMALLINT record, SQLSMALLINT field) const
  {
    TextBuffer text = calls.Buffer(100);
    SQLINTEGER bytes = -1;
    EXPECT_EQ(calls.GetDescriptorText(descriptor, record, field, text, bytes), SQL_SUCCESS);
    EXPECT_EQ(bytes, calls.Argument(text.Text()).Bytes());
    return text.Text();
  }

  // Sets, and gives the SQLSTATE of what came of it.
  std::string Set(SQLHDESC descriptor, SQLSMALLINT record, SQLSMALLINT field, SQLPOINTER value)
  {
    const SQLRETURN result = calls.SetDescriptorField(descriptor, record, field, value);
    return result == SQL_SUCCESS ? "set" : StateOf(descriptor);
  }

  std::string StateOf(SQLHDESC descriptor) const
  {
    const auto records = calls.Diagnostics(SQL_HANDLE_DESC, descriptor);
    return records.empty() ? "none" : records.front().state;
  }

  void BindIdAndParameter()
  {
    EXPECT_EQ(calls.BindCol(stmt, 1, SQL_C_LONG, &number, sizeof(number), &length), SQL_SUCCESS);
    EXPECT_EQ(calls.BindParameter(stmt, 1, SQL_PARAM_INPUT, SQL_C_SHORT, SQL_INTEGER, 0, 0, &small,
                                  2, &smallLength),
              SQL_SUCCESS);
  }

  SQLINTEGER number = 0;
  SQLSMALLINT small = 0;
  SQLLEN length = 0;
  SQLLEN smallLength = 0;
};

const SQLINTEGER ApplicationDescriptors[] = {SQL_ATTR_APP_ROW_DESC, SQL_ATTR_APP_PARAM_DESC};

SQLPOINTER AsPointer(SQLLEN value)
{
  return reinterpret_cast<SQLPOINTER>(value);
}

}  // namespace

TEST_P(Descriptor, OfARowCountsWhatIsBoundAndWhatTheResultHas)
{
  Make("SELECT 1 AS [A], 2 AS [B]");
  BindIdAndParameter();
  EXPECT_EQ(Get<SQLSMALLINT>(Of(SQL_ATTR_APP_ROW_DESC), 0, SQL_DESC_COUNT), 1);
  EXPECT_EQ(Get<SQLSMALLINT>(Of(SQL_ATTR_IMP_ROW_DESC), 0, SQL_DESC_COUNT), 2);
  EXPECT_EQ(Get<SQLSMALLINT>(Of(SQL_ATTR_APP_PARAM_DESC), 0, SQL_DESC_COUNT), 1);
}

TEST_P(Descriptor, HeadTellsTheAddressesThatAttributesHaveSet)
{
  SQLULEN offset = 0;
  SQLULEN processed = 0;
  SQLUSMALLINT status = 0;
  calls.SetStatementPointer(stmt, SQL_ATTR_ROW_BIND_OFFSET_PTR, &offset);
  calls.SetStatementPointer(stmt, SQL_ATTR_ROWS_FETCHED_PTR, &processed);
  calls.SetStatementPointer(stmt, SQL_ATTR_ROW_STATUS_PTR, &status);
  calls.SetStatementNumber(stmt, SQL_ATTR_ROW_BIND_TYPE, 24);
  for (const SQLINTEGER attribute : {SQL_ATTR_APP_ROW_DESC, SQL_ATTR_IMP_ROW_DESC}) {
    const SQLHDESC row = Of(attribute);
    EXPECT_EQ(Get<SQLULEN*>(row, 0, SQL_DESC_BIND_OFFSET_PTR), &offset);
    EXPECT_EQ(Get<SQLULEN*>(row, 0, SQL_DESC_ROWS_PROCESSED_PTR), &processed);
    EXPECT_EQ(Get<SQLUSMALLINT*>(row, 0, SQL_DESC_ARRAY_STATUS_PTR), &status);
    EXPECT_EQ(Get<SQLINTEGER>(row, 0, SQL_DESC_BIND_TYPE), 24);
    EXPECT_EQ(Get<SQLULEN>(row, 0, SQL_DESC_ARRAY_SIZE), 1U);
    EXPECT_EQ(Get<SQLSMALLINT>(row, 0, SQL_DESC_ALLOC_TYPE), SQL_DESC_ALLOC_AUTO);
  }
  const SQLHDESC parameters = Of(SQL_ATTR_APP_PARAM_DESC);
  EXPECT_EQ(Get<SQLULEN*>(parameters, 0, SQL_DESC_BIND_OFFSET_PTR), nullptr);
  EXPECT_EQ(Get<SQLINTEGER>(parameters, 0, SQL_DESC_BIND_TYPE), 0);
}

TEST_P(Descriptor, HeadOfParametersHasItsOwnAddresses)
{
  SQLULEN offset = 0;
  SQLULEN processed = 0;
  SQLUSMALLINT status = 0;
  calls.SetStatementPointer(stmt, SQL_ATTR_PARAM_BIND_OFFSET_PTR, &offset);
  calls.SetStatementPointer(stmt, SQL_ATTR_PARAMS_PROCESSED_PTR, &processed);
  calls.SetStatementPointer(stmt, SQL_ATTR_PARAM_STATUS_PTR, &status);
  const SQLHDESC parameters = Of(SQL_ATTR_APP_PARAM_DESC);
  EXPECT_EQ(Get<SQLULEN*>(parameters, 0, SQL_DESC_BIND_OFFSET_PTR), &offset);
  EXPECT_EQ(Get<SQLULEN*>(parameters, 0, SQL_DESC_ROWS_PROCESSED_PTR), &processed);
  EXPECT_EQ(Get<SQLUSMALLINT*>(parameters, 0, SQL_DESC_ARRAY_STATUS_PTR), &status);
  EXPECT_EQ(Get<SQLULEN*>(Of(SQL_ATTR_APP_ROW_DESC), 0, SQL_DESC_BIND_OFFSET_PTR), nullptr);
}

TEST_P(Descriptor, TellsABindingAsItWasMade)
{
  BindIdAndParameter();
  const SQLHDESC row = Of(SQL_ATTR_APP_ROW_DESC);
  EXPECT_EQ(Get<SQLSMALLINT>(row, 1, SQL_DESC_CONCISE_TYPE), SQL_C_LONG);
  EXPECT_EQ(Get<SQLSMALLINT>(row, 1, SQL_DESC_TYPE), SQL_C_LONG);
  EXPECT_EQ(Get<SQLLEN>(row, 1, SQL_DESC_OCTET_LENGTH), SQLLEN{sizeof(number)});
  EXPECT_EQ(Get<void*>(row, 1, SQL_DESC_DATA_PTR), &number);
  EXPECT_EQ(Get<SQLLEN*>(row, 1, SQL_DESC_INDICATOR_PTR), &length);
  EXPECT_EQ(Get<SQLLEN*>(row, 1, SQL_DESC_OCTET_LENGTH_PTR), &length);
  const SQLHDESC parameters = Of(SQL_ATTR_APP_PARAM_DESC);
  EXPECT_EQ(Get<SQLSMALLINT>(parameters, 1, SQL_DESC_TYPE), SQL_C_SHORT);
  EXPECT_EQ(Get<void*>(parameters, 1, SQL_DESC_DATA_PTR), &small);
  EXPECT_EQ(Get<SQLLEN*>(parameters, 1, SQL_DESC_OCTET_LENGTH_PTR), &smallLength);
}

TEST_P(Descriptor, FieldsThatAreSetBindAColumn)
{
  Make("SELECT NULL, 7");
  const SQLHDESC row = Of(SQL_ATTR_APP_ROW_DESC);
  SQLLEN null = 5;
  SQLLEN octets = 5;
  EXPECT_EQ(Set(row, 1, SQL_DESC_TYPE, AsPointer(SQL_C_LONG)), "set");
  EXPECT_EQ(Set(row, 1, SQL_DESC_INDICATOR_PTR, &null), "set");
  EXPECT_EQ(Set(row, 2, SQL_DESC_CONCISE_TYPE, AsPointer(SQL_C_LONG)), "set");
  EXPECT_EQ(Set(row, 2, SQL_DESC_OCTET_LENGTH, AsPointer(sizeof(number))), "set");
  EXPECT_EQ(Set(row, 2, SQL_DESC_PRECISION, AsPointer(10)), "set");
  EXPECT_EQ(Set(row, 2, SQL_DESC_SCALE, AsPointer(0)), "set");
  EXPECT_EQ(Set(row, 2, SQL_DESC_DATA_PTR, &number), "set");
  EXPECT_EQ(Set(row, 2, SQL_DESC_OCTET_LENGTH_PTR, &octets), "set");
  ASSERT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(number, 7);
  EXPECT_EQ(octets, SQLLEN{sizeof(number)});
  EXPECT_EQ(null, SQL_NULL_DATA);
}

TEST_P(Descriptor, IndicatorApartFromTheLengthIsNullOrNothing)
{
  Make("SELECT 'abc'");
  TextBuffer text = calls.Buffer(10);
  ASSERT_EQ(calls.BindCol(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), &length),
            SQL_SUCCESS);
  SQLLEN null = -77;
  EXPECT_EQ(Set(Of(SQL_ATTR_APP_ROW_DESC), 1, SQL_DESC_INDICATOR_PTR, &null), "set");
  ASSERT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(text.Text(), "abc");
  EXPECT_EQ(length, calls.Argument("abc").Bytes());
  EXPECT_EQ(null, 0);
}

TEST_P(Descriptor, LengthApartFromTheIndicatorMayBeBoundAlone)
{
  Make("SELECT 'abc'");
  const SQLHDESC row = Of(SQL_ATTR_APP_ROW_DESC);
  EXPECT_EQ(Set(row, 1, SQL_DESC_TYPE, AsPointer(calls.TextType())), "set");
  EXPECT_EQ(Set(row, 1, SQL_DESC_OCTET_LENGTH_PTR, &length), "set");
  ASSERT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(length, calls.Argument("abc").Bytes());
}

TEST_P(Descriptor, OfAResultTellsItsColumns)
{
  Make("CREATE TABLE [T] ([Name] TEXT(20))");
  Make("SELECT [Name] FROM [T]");
  const SQLHDESC row = Of(SQL_ATTR_IMP_ROW_DESC);
  EXPECT_EQ(GetText(row, 1, SQL_DESC_NAME), "Name");
  EXPECT_EQ(GetText(row, 1, SQL_DESC_BASE_TABLE_NAME), "T");
  EXPECT_EQ(Get<SQLSMALLINT>(row, 1, SQL_DESC_TYPE), SQL_WVARCHAR);
  EXPECT_EQ(Get<SQLLEN>(row, 1, SQL_DESC_LENGTH), 20);
  EXPECT_EQ(Get<SQLLEN>(row, 1, SQL_DESC_OCTET_LENGTH), 40);
  EXPECT_EQ(Get<SQLLEN>(row, 1, SQL_DESC_DISPLAY_SIZE), 20);
  EXPECT_EQ(Set(row, 1, SQL_DESC_TYPE, AsPointer(SQL_INTEGER)), "HY016");
}

TEST_P(Descriptor, RecordsAreCountedFromOneAndEnd)
{
  Make("SELECT 1");
  BindIdAndParameter();
  SQLSMALLINT type = 0;
  for (const SQLINTEGER attribute : ApplicationDescriptors) {
    const SQLHDESC descriptor = Of(attribute);
    EXPECT_EQ(calls.GetDescriptorField(descriptor, 0, SQL_DESC_TYPE, &type), SQL_ERROR);
    EXPECT_EQ(StateOf(descriptor), "07009");
    EXPECT_EQ(calls.GetDescriptorField(descriptor, 2, SQL_DESC_TYPE, &type), SQL_NO_DATA);
  }
  EXPECT_EQ(Set(Of(SQL_ATTR_APP_PARAM_DESC), 2, SQL_DESC_TYPE, AsPointer(SQL_C_LONG)), "07009");
}

TEST_P(Descriptor, FieldsThatItHasNotAreRefused)
{
  Make("SELECT 1");
  BindIdAndParameter();
  SQLSMALLINT value = 0;
  for (const SQLINTEGER attribute : {SQL_ATTR_APP_ROW_DESC, SQL_ATTR_IMP_ROW_DESC}) {
    const SQLHDESC descriptor = Of(attribute);
    EXPECT_EQ(calls.GetDescriptorField(descriptor, 1, 4711, &value), SQL_ERROR);
    EXPECT_EQ(StateOf(descriptor), "HY091");
  }
  const SQLHDESC row = Of(SQL_ATTR_APP_ROW_DESC);
  EXPECT_EQ(Set(row, 1, 4711, AsPointer(1)), "HYC00");
  EXPECT_EQ(Set(row, 0, SQL_DESC_ARRAY_SIZE, AsPointer(2)), "HYC00");
}

TEST_P(Descriptor, OfParametersIsNotFilledFromTheStatement)
{
  BindIdAndParameter();
  const SQLHDESC implementation = Of(SQL_ATTR_IMP_PARAM_DESC);
  SQLSMALLINT type = 0;
  EXPECT_EQ(calls.GetDescriptorField(implementation, 1, SQL_DESC_TYPE, &type), SQL_ERROR);
  EXPECT_EQ(StateOf(implementation), "HYC00");
  EXPECT_EQ(Set(implementation, 1, SQL_DESC_TYPE, AsPointer(SQL_INTEGER)), "HYC00");
  EXPECT_EQ(type, 0);
}

TEST_P(Descriptor, NoPlaceForAnAnswerIsPlainSuccess)
{
  BindIdAndParameter();
  const SQLHDESC row = Of(SQL_ATTR_APP_ROW_DESC);
  for (const SQLSMALLINT field : std::initializer_list<SQLSMALLINT>{
           SQL_DESC_BIND_OFFSET_PTR, SQL_DESC_ARRAY_STATUS_PTR, SQL_DESC_ROWS_PROCESSED_PTR,
           SQL_DESC_COUNT, SQL_DESC_DATA_PTR, SQL_DESC_INDICATOR_PTR, SQL_DESC_OCTET_LENGTH_PTR,
           SQL_DESC_TYPE})
    EXPECT_EQ(calls.GetDescriptorField(row, 1, field, nullptr), SQL_SUCCESS) << field;
}

TEST_P(Descriptor, BelongsToItsStatement)
{
  const SQLHDESC row = Of(SQL_ATTR_APP_ROW_DESC);
  EXPECT_EQ(calls.FreeHandle(SQL_HANDLE_DESC, row), SQL_ERROR);
  EXPECT_EQ(StateOf(row), "HY017");
  EXPECT_EQ(calls.SetStatementPointer(stmt, SQL_ATTR_APP_ROW_DESC, row), SQL_SUCCESS);
  EXPECT_EQ(calls.SetStatementPointer(stmt, SQL_ATTR_APP_PARAM_DESC, nullptr), SQL_SUCCESS);
  EXPECT_EQ(calls.SetStatementPointer(stmt, SQL_ATTR_APP_PARAM_DESC, row), SQL_ERROR);
  EXPECT_EQ(session.State(), "HYC00");
  EXPECT_EQ(calls.SetStatementPointer(stmt, SQL_ATTR_IMP_ROW_DESC, row), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY017");
}

TEST_P(Descriptor, OfAFreedStatementOrOfNoneIsInvalid)
{
  const SQLHDESC row = Of(SQL_ATTR_APP_ROW_DESC);
  SQLSMALLINT count = 0;
  // A statement's handle is none of a descriptor, nor is one with a role that there isn't.
  EXPECT_EQ(calls.GetDescriptorField(stmt, 0, SQL_DESC_COUNT, &count), SQL_INVALID_HANDLE);
  const auto noRole = reinterpret_cast<SQLHDESC>(reinterpret_cast<uintptr_t>(stmt) | 7);
  EXPECT_EQ(calls.GetDescriptorField(noRole, 0, SQL_DESC_COUNT, &count), SQL_INVALID_HANDLE);
  EXPECT_EQ(calls.ExecDirect(row, "SELECT 1"), SQL_INVALID_HANDLE);
  ASSERT_EQ(calls.FreeHandle(SQL_HANDLE_STMT, stmt), SQL_SUCCESS);
  session.stmt = nullptr;
  EXPECT_EQ(calls.GetDescriptorField(row, 0, SQL_DESC_COUNT, &count), SQL_INVALID_HANDLE);
  EXPECT_EQ(calls.FreeHandle(SQL_HANDLE_DESC, row), SQL_INVALID_HANDLE);
}

INSTANTIATE_TEST_SUITE_P(Each, Descriptor, StraightWays(), WayName);
