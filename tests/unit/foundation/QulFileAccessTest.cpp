#include "foundation/QulFileAccess.h"

#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/PlatformTest.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/update/LeftToTheEnd.h"

#include <gtest/gtest.h>

#include <errno.h>
#include <string.h>

#include <type_traits>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

const char* const Path = "C:\\Data\\My file.xml";

// What is read of a file.
struct Reading
{
  uint64_t items;
  std::string text;

  bool operator==(const Reading&) const = default;
};

void PrintTo(const Reading& reading, std::ostream* out)
{
  *out << reading.items << " items, \"" << reading.text << "\"";
}

// Bytes of a literal, those of value 0 too.
template <size_t Size>
std::string Bytes(const char (&literal)[Size])
{
  return std::string(literal, Size - 1);
}

// A text in UTF-16, without a mark.
std::string Utf16(const std::string& utf8)
{
  const std::vector<unsigned char> bytes = TextBytes(utf8);
  return std::string(bytes.begin(), bytes.end());
}

const std::string WideMark = "\xFF\xFE";
const std::string SwappedMark = "\xFE\xFF";
const std::string NarrowMark = "\xEF\xBB\xBF";

struct ReadingCase
{
  std::string file;
  Reading reading;
};

class FileAccess : public PlatformTest
{
protected:
  void TearDown() override
  {
    EXPECT_EQ(Files().OpenStreams(), 0);
    PlatformTest::TearDown();
  }

  static Reading Read(const std::string& file, uint64_t size)
  {
    Files().Put(Path, file);
    QulFileAccess access(Handle(Path), L"r", 1);
    if (access.file == nullptr)
      return {0, "The file could not be opened."};
    QulString text(L"what was there before");
    const LeftToTheEnd buffers;
    const uint64_t items = access.ReadAll(text, size);
    return {items, TextOf(text)};
  }

  // With the size that the file has.
  static Reading Read(const std::string& file) { return Read(file, file.size()); }

  // As the one user of the class does it: it goes to the end for the size and back to the start.
  static Reading ReadFromTheStart(const std::string& file)
  {
    Files().Put(Path, file);
    QulFileAccess access(Handle(Path), L"r", 1);
    (void)fseek(access.file, 0, SEEK_END);
    const auto size = static_cast<uint64_t>(ftell(access.file));
    EXPECT_EQ(size, file.size());
    (void)fseek(access.file, 0, SEEK_SET);
    QulString text;
    const LeftToTheEnd buffers;
    const uint64_t items = access.ReadAll(text, size);
    return {items, TextOf(text)};
  }

  static void ExpectReadings(const std::vector<ReadingCase>& cases)
  {
    for (const ReadingCase& c : cases)
      EXPECT_EQ(Read(c.file), c.reading) << "file: " << testing::PrintToString(c.file);
  }
};

}  // namespace

TEST_F(FileAccess, IsOpenedAsTextWhoseEncodingTheRuntimeLooksFor)
{
  Files().Put(Path, "abc");
  const QulFileAccess access(Handle(Path), L"r", 1);
  EXPECT_NE(access.file, nullptr);
  EXPECT_EQ(Diary(), Lines{"_wfopen_s(\"C:\\Data\\My file.xml\", \"r, ccs=UNICODE\") = 0"});
}

TEST_F(FileAccess, ItsFlagsAreOneWhateverTheLastArgument)
{
  for (const int unused : {0, 1, -5})
    EXPECT_EQ(QulFileAccess(L"", L"r", unused).flags, 1);
}

TEST_F(FileAccess, AnEmptyPathOpensNothing)
{
  {
    const QulFileAccess access(L"", L"r", 1);
    EXPECT_EQ(access.file, nullptr);
  }
  EXPECT_EQ(Diary(), Lines());
}

TEST_F(FileAccess, AFileThatIsNotThereShowsAsNoFile)
{
  const QulFileAccess access(L"C:\\None\\x.xml", L"r", 1);
  EXPECT_EQ(access.file, nullptr);
  EXPECT_EQ(Diary(), Lines{"_wfopen_s(\"C:\\None\\x.xml\", \"r, ccs=UNICODE\") = 2"});
}

TEST_F(FileAccess, AFolderShowsAsNoFile)
{
  Files().MakeFolder("C:\\Data\\x.xml");
  EXPECT_EQ(QulFileAccess(L"C:\\Data\\x.xml", L"r", 1).file, nullptr);
}

TEST_F(FileAccess, AFileThatCanNotBeOpenedShowsAsNoFile)
{
  Files().Put(Path, "abc");
  FailCall("_wfopen_s", 1, EACCES);
  EXPECT_EQ(QulFileAccess(Handle(Path), L"r", 1).file, nullptr);
}

TEST_F(FileAccess, TheDestructorClosesTheFile)
{
  Files().Put(Path, "abc");
  {
    const QulFileAccess access(Handle(Path), L"r", 1);
    EXPECT_EQ(Files().OpenStreams(), 1);
  }
  EXPECT_EQ(Files().OpenStreams(), 0);
}

TEST_F(FileAccess, AFileThatItsUserClosedIsNotClosedAgain)
{
  Files().Put(Path, "abc");
  QulFileAccess access(Handle(Path), L"r", 1);
  EXPECT_EQ(fclose(access.file), 0);
  access.file = nullptr;
}

TEST_F(FileAccess, IsDeletedThroughItsVirtualDestructor)
{
  static_assert(std::has_virtual_destructor_v<QulFileAccess>);
  static_assert(!std::is_copy_constructible_v<QulFileAccess>);
  static_assert(!std::is_copy_assignable_v<QulFileAccess>);
  Files().Put(Path, "abc");
  delete new QulFileAccess(Handle(Path), L"r", 1);
  EXPECT_EQ(Files().OpenStreams(), 0);
}

TEST_F(FileAccess, AReadingLeavesTheFileOpen)
{
  Files().Put(Path, "abc");
  QulFileAccess access(Handle(Path), L"r", 1);
  FILE* const file = access.file;
  QulString text;
  const LeftToTheEnd buffers;
  (void)access.ReadAll(text, 3);
  EXPECT_EQ(access.file, file);
  EXPECT_EQ(Files().OpenStreams(), 1);
}

TEST_F(FileAccess, PlainTextIsInTheAnsiCodePage)
{
  EXPECT_EQ(Read("a\x80\xE4\x81 b"), (Reading{6, "a\xE2\x82\xAC\xC3\xA4\xC2\x81 b"}));
  EXPECT_EQ(DiaryOf({"MultiByteToWideChar"}).size(), 1u);
}

TEST_F(FileAccess, LineEndsAreTranslatedAndControlZEndsTheText)
{
  ExpectReadings({{"a\r\nb\r\n", {4, "a\nb\n"}},
                  {"a\rb\n\r", {5, "a\rb\n\r"}},
                  {"a\x1A"
                   "b",
                   {1, "a"}}});
}

TEST_F(FileAccess, FilesOfAFewBytesAreReadWhole)
{
  ExpectReadings({{"", {0, ""}},
                  {"a", {1, "a"}},
                  {"ab", {2, "ab"}},
                  {"abc", {3, "abc"}},
                  {"abcd", {4, "abcd"}},
                  {"abcde", {5, "abcde"}},
                  {"abcdef", {6, "abcdef"}}});
}

TEST_F(FileAccess, AnEmptyTextIsTheSharedEmptyString)
{
  Files().Put(Path, "");
  QulFileAccess access(Handle(Path), L"r", 1);
  QulString text(L"before");
  const LeftToTheEnd buffers;
  EXPECT_EQ(access.ReadAll(text, 0), 0u);
  EXPECT_EQ(text.repr, QulStringEmptyRepr);
}

TEST_F(FileAccess, HalfAMarkIsText)
{
  ExpectReadings({{"\xFF", {1, "\xC3\xBF"}},
                  {"\xFE", {1, "\xC3\xBE"}},
                  {"\xFF\xFF", {2, "\xC3\xBF\xC3\xBF"}},
                  {"\xFE\xFE", {2, "\xC3\xBE\xC3\xBE"}},
                  {"a\xFF\xFE", {3, "a\xC3\xBF\xC3\xBE"}},
                  {"\xEF\xBB", {2, "\xC3\xAF\xC2\xBB"}},
                  {"ab\xEF\xBB", {4, "ab\xC3\xAF\xC2\xBB"}},
                  {"ab\xEF\xBB\xEF", {5, "ab\xC3\xAF\xC2\xBB\xC3\xAF"}},
                  {"ab\xEF\xBF\xBF", {5, "ab\xC3\xAF\xC2\xBF\xC2\xBF"}},
                  {"ab\xBB\xBB\xBF", {5, "ab\xC2\xBB\xC2\xBB\xC2\xBF"}}});
}

TEST_F(FileAccess, AMarkThatTheRuntimeConsumedComesBackAsText)
{
  // The runtime skips the mark, so that it isn't seen, and delivers it from the very start.
  ExpectReadings({{WideMark, {2, "\xC3\xBF\xC3\xBE"}},
                  {WideMark + Utf16("a"),
                   {4,
                    "\xC3\xBF\xC3\xBE"
                    "a"}},
                  {WideMark + Utf16("ab"),
                   {6,
                    "\xC3\xBF\xC3\xBE"
                    "a"}},
                  {NarrowMark, {2, "\xC3\xBF\xC3\xBE"}},
                  {NarrowMark + "a",
                   {4,
                    "\xC3\xBF\xC3\xBE"
                    "a"}}});
}

TEST_F(FileAccess, TranslatedTextIsCutAtTheSizeOfTheFile)
{
  EXPECT_EQ(Read(NarrowMark + "abc").items, 6u);
}

TEST_F(FileAccess, AMarkBehindTheOneThatTheRuntimeConsumedMakesWideText)
{
  ExpectReadings({{WideMark + WideMark, {0, ""}},
                  {WideMark + WideMark + Utf16("a\xE2\x82\xAC\xF0\x9F\x98\x80"),
                   {4, "a\xE2\x82\xAC\xF0\x9F\x98\x80"}},
                  {WideMark + SwappedMark + Utf16("ab"), {2, "ab"}},
                  {NarrowMark + NarrowMark + "a\xE2\x82\xAC", {2, "a\xE2\x82\xAC"}},
                  {WideMark + WideMark +
                       Utf16("a\r\nb\x1A"
                             "c"),
                   {3, "a\nb"}}});
}

TEST_F(FileAccess, ReadFromTheVeryStartAMarkThatTheRuntimeConsumedIsThere)
{
  const ReadingCase cases[] = {
      {WideMark, {0, ""}},
      {WideMark + "a", {0, ""}},
      {WideMark + Utf16("a"), {1, "a"}},
      {WideMark + Utf16("a\r\n\xE2\x82\xAC"), {3, "a\n\xE2\x82\xAC"}},
      {NarrowMark, {0, ""}},
      {NarrowMark + "a", {1, "a"}},
      {NarrowMark + "a\r\n\xE2\x82\xAC", {3, "a\n\xE2\x82\xAC"}},
      {WideMark + WideMark + Utf16("a"),
       {2,
        "\xEF\xBB\xBF"
        "a"}},
      {SwappedMark + Utf16("a"), {1, "a"}},
      {"ab" + NarrowMark + Utf16("cd"), {2, "cd"}},
      {"abcdef", {6, "abcdef"}},
      {"a\r\nb", {3, "a\nb"}},
  };
  for (const ReadingCase& c : cases)
    EXPECT_EQ(ReadFromTheStart(c.file), c.reading) << "file: " << testing::PrintToString(c.file);
}

TEST_F(FileAccess, AMarkOfTheOtherByteOrderMakesWideTextThatIsNotSwapped)
{
  ExpectReadings({{SwappedMark, {0, ""}},
                  {SwappedMark + "a", {0, ""}},
                  {SwappedMark + Utf16("a"), {1, "a"}},
                  {SwappedMark + Bytes("\0a"), {1, "\xE6\x84\x80"}},
                  {SwappedMark + Utf16("ab") + "c", {2, "ab"}}});
}

TEST_F(FileAccess, TheNarrowMarkIsLookedForBehindTheFirstTwoBytes)
{
  ExpectReadings({{"ab" + NarrowMark, {0, ""}},
                  {"ab" + NarrowMark + "c", {0, ""}},
                  {"ab" + NarrowMark + Utf16("cd"), {2, "cd"}},
                  {"a" + NarrowMark + Utf16("cd"),
                   {8,
                    "a\xC3\xAF\xC2\xBB\xC2\xBF"
                    "c"}},
                  {"abc" + NarrowMark, {6, "abc\xC3\xAF\xC2\xBB\xC2\xBF"}}});
}

TEST_F(FileAccess, TheNarrowMarkIsLookedForInWhatTheStreamDelivers)
{
  EXPECT_EQ(Read(WideMark + Utf16("x") + NarrowMark + "\x01" + Utf16("c")),
            (Reading{1, "\xE6\x8C\x81"}));
}

TEST_F(FileAccess, AWideMarkIsLookedForInFrontAlone)
{
  EXPECT_EQ(Read("ab" + WideMark + "c"), (Reading{5,
                                                  "ab\xC3\xBF\xC3\xBE"
                                                  "c"}));
}

TEST_F(FileAccess, AsManyItemsAreReadAsAreAskedFor)
{
  EXPECT_EQ(Read("abcdef", 3), (Reading{3, "abc"}));
  EXPECT_EQ(Read("abcdef", 100), (Reading{6, "abcdef"}));
  EXPECT_EQ(Read("abcdef", 0), (Reading{0, ""}));
  EXPECT_EQ(Read(WideMark + WideMark + Utf16("abc"), 2), (Reading{2, "ab"}));
  EXPECT_EQ(Read(WideMark + WideMark + Utf16("abc"), 3), (Reading{3, "abc"}));
}

TEST_F(FileAccess, TheTextEndsAtItsFirstTerminatorAndTheCountDoesNot)
{
  ExpectReadings({{Bytes("a\0b"), {3, "a"}},
                  {Bytes("\0ab"), {3, ""}},
                  {SwappedMark + Utf16("a") + Bytes("\0\0") + Utf16("b"), {3, "a"}}});
}

TEST_F(FileAccess, ATextBeyondTheConversionsBufferComesOutAsTheConversionLeavesIt)
{
  const std::string file(QulStringLimit + 10, 'x');
  const Reading reading = Read(file);
  EXPECT_EQ(reading.items, file.size());
  EXPECT_EQ(reading.text, TextOf(QulString(file.c_str())));
}

TEST_F(FileAccess, WideTextKnowsNoLimit)
{
  const std::string text(QulStringLimit + 10, 'x');
  EXPECT_EQ(Read(SwappedMark + Utf16(text)), (Reading{text.size(), text}));
}
