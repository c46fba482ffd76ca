#include "database/Trace.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

namespace {

Lines taken;

void Take(const wchar_t* text)
{
  taken.push_back(Utf8(text));
}

class Trace : public PlatformTest
{
protected:
  Trace() { taken.clear(); }
  ~Trace() override { TraceCallback = nullptr; }
};

}  // namespace

TEST_F(Trace, HasNoCallbackAtFirst)
{
  EXPECT_EQ(TraceCallback, nullptr);
  EXPECT_EQ(TraceContext, nullptr);
}

TEST_F(Trace, GoesToTheDebugOutputBehindALineFeed)
{
  ReportTrace(L"Unable to drop table A");
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Unable to drop table A"}));
}

TEST_F(Trace, OfAnEmptyTextIsALineFeedAndAnEmptyText)
{
  ReportTrace(L"");
  EXPECT_EQ(DebugTexts(), (Lines{"\n", ""}));
}

TEST_F(Trace, InARowEachHasALineFeedOfItsOwn)
{
  ReportTrace(L"a");
  ReportTrace(L"b");
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "a", "\n", "b"}));
}

TEST_F(Trace, GoesToTheCallbackAloneAsItStands)
{
  TraceCallback = Take;
  ReportTrace(L"100% of %s \u0142");
  EXPECT_EQ(taken, (Lines{"100% of %s \u0142"}));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(Trace, GoesToTheDebugOutputAgainWithoutTheCallback)
{
  TraceCallback = Take;
  ReportTrace(L"a");
  TraceCallback = nullptr;
  ReportTrace(L"b");
  EXPECT_EQ(taken, (Lines{"a"}));
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "b"}));
}

TEST_F(Trace, OfADatabaseGoesToTheCallbackToo)
{
  TraceCallback = Take;
  const QulDatabase database(L"DBQ=C:\\none.mdb", L"QuillBase");
  EXPECT_EQ(taken, (Lines{"Error driver connect to database."}));
  EXPECT_TRUE(DebugTexts().empty());
}
