// Values: what is stored, what a query gives and what it leaves alone.
#include "tests/contract/Disagreements.h"
#include "tests/contract/RegistryFixture.h"

namespace {

struct RawRow
{
  const char* name;
  DWORD type;
  const void* data;
  DWORD bytes;
  bool lacksTerminator;  // is text of whole characters without one
};

const RawRow RawRows[] = {{"empty", REG_SZ, L"", 0, false},
                          {"terminator alone", REG_SZ, L"", 2, false},
                          {"one character", REG_SZ, L"a", 2, true},
                          {"one byte", REG_SZ, L"a", 1, false},
                          {"odd length", REG_SZ, L"ab", 3, false},
                          {"no terminator", REG_SZ, L"ab", 4, true},
                          {"one terminator", REG_SZ, L"ab", 6, false},
                          {"two terminators", REG_SZ, L"ab\0", 8, false},
                          {"expandable", REG_EXPAND_SZ, L"%a%", 8, false},
                          {"number", REG_DWORD, "\x0D\0\0\0", 4, false},
                          {"bytes", REG_BINARY, "abc", 3, false},
                          {"number of wrong size", REG_DWORD, "ab", 2, false}};

DWORD StoredBytes(const RawRow& row)
{
  return row.bytes + (row.lacksTerminator && WritesAddTerminator() ? 2 : 0);
}

}  // namespace

TEST_F(RegistryContract, AQueryGivesTypeSizeAndBytesAsStored)
{
  for (const RawRow& row : RawRows) {
    SCOPED_TRACE(row.name);
    ASSERT_EQ(ERROR_SUCCESS, Write(key, L"Value", row.type, row.data, row.bytes));
    const QueryResult result = Query(key, L"Value");
    EXPECT_EQ(ERROR_SUCCESS, result.status);
    EXPECT_EQ(row.type, result.type);
    EXPECT_EQ(StoredBytes(row), result.size);
    EXPECT_EQ(0, memcmp(result.data, row.data, row.bytes));
  }
}

TEST_F(RegistryContract, AQueryLeavesTheMemoryBehindTheDataAlone)
{
  for (const RawRow& row : RawRows) {
    SCOPED_TRACE(row.name);
    ASSERT_EQ(ERROR_SUCCESS, Write(key, L"Value", row.type, row.data, row.bytes));
    const bool isText = row.type == REG_SZ || row.type == REG_EXPAND_SZ;
    const size_t added = isText && ReadsAddTerminator() ? 2 : 0;
    EXPECT_TRUE(Query(key, L"Value").IsPoisonFrom(StoredBytes(row) + added));
  }
}

TEST_F(RegistryContract, ABufferOfTheExactSizeIsEnough)
{
  for (const RawRow& row : RawRows) {
    SCOPED_TRACE(row.name);
    ASSERT_EQ(ERROR_SUCCESS, Write(key, L"Value", row.type, row.data, row.bytes));
    const QueryResult result = Query(key, L"Value", StoredBytes(row));
    EXPECT_EQ(ERROR_SUCCESS, result.status);
    EXPECT_EQ(StoredBytes(row), result.size);
    const size_t end = row.bytes == 1 ? 3 : StoredBytes(row);  // see Disagreements.h
    EXPECT_TRUE(result.IsPoisonFrom(end));
  }
}

TEST_F(RegistryContract, ABufferThatIsTooSmallGetsTheSizeNeeded)
{
  ASSERT_EQ(ERROR_SUCCESS, Write(key, L"Value", REG_SZ, L"abc", 8));
  const QueryResult result = Query(key, L"Value", 7);
  EXPECT_EQ(ERROR_MORE_DATA, result.status);
  EXPECT_EQ(8u, result.size);
  EXPECT_EQ(static_cast<DWORD>(REG_SZ), result.type);
  EXPECT_TRUE(result.IsPoisonFrom(7));
}

TEST_F(RegistryContract, AMissingValueLeavesAllOutputsAlone)
{
  const QueryResult result = Query(key, L"None");
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, result.status);
  EXPECT_EQ(0xDEADBEEFu, result.type);
  EXPECT_EQ(QueryResult::BufferBytes, result.size);
  EXPECT_TRUE(result.IsPoisonFrom(0));
}

TEST_F(RegistryContract, AQueryWithoutABufferGivesTheSize)
{
  ASSERT_EQ(ERROR_SUCCESS, Write(key, L"Value", REG_BINARY, "abc", 3));
  DWORD size = 99;
  EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, L"Value", nullptr, nullptr, nullptr, &size));
  EXPECT_EQ(3u, size);
}

TEST_F(RegistryContract, AQueryWithABufferAndNoSizeIsRefused)
{
  BYTE data[4];
  EXPECT_EQ(ERROR_INVALID_PARAMETER,
            RegQueryValueExW(key, L"Value", nullptr, nullptr, data, nullptr));
}

TEST_F(RegistryContract, TheTypeNeedNotBeAskedFor)
{
  ASSERT_EQ(ERROR_SUCCESS, Write(key, L"Value", REG_BINARY, "abc", 3));
  BYTE data[4] = {};
  DWORD size = 4;
  EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, L"Value", nullptr, nullptr, data, &size));
  EXPECT_EQ('c', data[2]);
}

TEST_F(RegistryContract, TheDefaultValueHasTheEmptyNameOrNone)
{
  ASSERT_EQ(ERROR_SUCCESS, Write(key, nullptr, REG_BINARY, "abc", 3));
  EXPECT_EQ(ERROR_SUCCESS, Query(key, L"").status);
  EXPECT_EQ(ERROR_SUCCESS, Query(key, nullptr).status);
}

TEST_F(RegistryContract, ValueNamesHaveNoRegardToCase)
{
  ASSERT_EQ(ERROR_SUCCESS, Write(key, L"Value", REG_BINARY, "abc", 3));
  ASSERT_EQ(ERROR_SUCCESS, Write(key, L"vALUE", REG_BINARY, "de", 2));
  EXPECT_EQ(2u, Query(key, L"VALUE").size);
}

TEST_F(RegistryContract, AQueryNeedsTheRightToQuery)
{
  ASSERT_EQ(ERROR_SUCCESS, Open(key, nullptr, KEY_ENUMERATE_SUB_KEYS | KEY_SET_VALUE));
  const QueryResult result = Query(opened, L"Value");
  EXPECT_EQ(ERROR_ACCESS_DENIED, result.status);
  EXPECT_EQ(QueryResult::BufferBytes, result.size);
}

TEST_F(RegistryContract, AWriteNeedsTheRightToSet)
{
  ASSERT_EQ(ERROR_SUCCESS, Open(key, nullptr, KEY_READ));
  EXPECT_EQ(ERROR_ACCESS_DENIED, Write(opened, L"Value", REG_BINARY, "abc", 3));
  ASSERT_EQ(ERROR_SUCCESS, Open(key, nullptr, KEY_SET_VALUE));
  EXPECT_EQ(ERROR_SUCCESS, Write(opened, L"Value", REG_BINARY, "abc", 3));
}

TEST_F(RegistryContract, NoCallTakesANullHandle)
{
  EXPECT_EQ(ERROR_INVALID_HANDLE, Open(nullptr, L"Key", KEY_READ));
  EXPECT_EQ(ERROR_INVALID_HANDLE, Query(nullptr, L"Value").status);
  EXPECT_EQ(ERROR_INVALID_HANDLE, Write(nullptr, L"Value", REG_BINARY, "abc", 3));
  EXPECT_EQ(ERROR_INVALID_HANDLE, RegCloseKey(nullptr));
}

TEST_F(RegistryContract, NoCallTakesAClosedHandle)
{
  ASSERT_EQ(ERROR_SUCCESS, Open(key, nullptr, KEY_READ));
  handles.pop_back();
  ASSERT_EQ(ERROR_SUCCESS, RegCloseKey(opened));
  EXPECT_EQ(ERROR_INVALID_HANDLE, Query(opened, L"Value").status);
  EXPECT_EQ(ERROR_INVALID_HANDLE, RegCloseKey(opened));
  AllowMisuse();
}
