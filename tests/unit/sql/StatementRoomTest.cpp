// A short text in a long buffer, at the end of the longest statement.
#include "sql/StatementText.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/Text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class StatementRoom : public PlatformTest
{
};

}  // namespace

TEST_F(StatementRoom, AShortTextOfALongBufferNeedsNoMoreRoomThanItsCharacters)
{
  const std::u16string filler(QulStringLimit - 1 - 7, u'x');
  wchar_t buffer[50] = L"a'b";
  StatementText statement;
  statement.Append(reinterpret_cast<const wchar_t*>(filler.c_str()));
  // Two quotes around the text, and one that is doubled in it.
  statement.AppendQuoted(buffer, 50);
  statement.Append(L'z');
  EXPECT_EQ(Utf8(statement.Text() + filler.size()), "'a''b'z");
}
