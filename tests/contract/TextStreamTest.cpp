// Files that _wfopen_s opens with the mode "r, ccs=UNICODE".
#include "tests/contract/ContractTest.h"

#include <stdio.h>
#include <string.h>

namespace {

using namespace std::string_literals;

const wchar_t* const Path = L"C:\\KestrelContract\\text.txt";
const wchar_t* const Mode = L"r, ccs=UNICODE";

class TextStream : public ContractTest
{
protected:
  ~TextStream() override
  {
    if (file != nullptr)
      (void)fclose(file);
  }

  // What the stream delivers from where the open has placed it.
  std::string Delivered(const std::string& content)
  {
    Open(content);
    return Rest();
  }

  // What it delivers after the start was sought.
  std::string DeliveredFromStart(const std::string& content)
  {
    Open(content);
    char skipped[2];
    (void)fread(skipped, 1, sizeof(skipped), file);
    EXPECT_EQ(0, fseek(file, 0, SEEK_SET));
    return Rest();
  }

  long SizeOf(const std::string& content)
  {
    Open(content);
    EXPECT_EQ(0, fseek(file, 0, SEEK_END));
    return ftell(file);
  }

  void Open(const std::string& content)
  {
    if (file != nullptr)
      (void)fclose(file);
    file = nullptr;
    PutFile("text.txt", content);
    ASSERT_EQ(0, _wfopen_s(&file, Path, Mode));
    ASSERT_NE(nullptr, file);
  }

  std::string Rest()
  {
    std::string bytes(8192, '\xBD');
    bytes.resize(fread(bytes.data(), 1, bytes.size(), file));
    return bytes;
  }

  FILE* file = nullptr;
};

const std::string Utf16Mark = "\xFF\xFE";
const std::string Utf8Mark = "\xEF\xBB\xBF";
const std::string BigEndianMark = "\xFE\xFF";

}  // namespace

TEST_F(TextStream, AFileWithoutMarkIsDeliveredAsItIs)
{
  EXPECT_EQ("ab\xE4\x80"s, Delivered("ab\xE4\x80"));
  EXPECT_EQ("a\0b\0"s, Delivered("a\0b\0"s));
  EXPECT_EQ("ab\xC3\xA4"s, Delivered("ab\xC3\xA4"));
}

TEST_F(TextStream, LineEndsOfTwoCharactersBecomeOne)
{
  EXPECT_EQ("ab\ncd\re\nf\r"s, Delivered("ab\r\ncd\re\nf\r"));
}

TEST_F(TextStream, AControlZEndsTheText)
{
  EXPECT_EQ("ab\nc"s, Delivered("ab\r\nc\x1A"
                                "def"));
  EXPECT_EQ("a\0"s, Delivered(Utf16Mark + "a\0\x1A\0b\0"s));
}

TEST_F(TextStream, AMarkOfUtf16IsConsumedAndTheTextIsWide)
{
  EXPECT_EQ("a\0\n\0\xAC\x20\r\0b\0"s, Delivered(Utf16Mark + "a\0\r\0\n\0\xAC\x20\r\0b\0"s));
  EXPECT_EQ(""s, Delivered(Utf16Mark));
}

TEST_F(TextStream, HalfACharacterAtTheEndIsDropped)
{
  EXPECT_EQ("a\0b\0"s, Delivered(Utf16Mark + "a\0b\0c"s));
}

TEST_F(TextStream, AMarkOfUtf8IsConsumedAndTheTextBecomesWide)
{
  EXPECT_EQ("a\0\n\0\xE4\0\xAC\x20\x3D\xD8\x00\xDEz\0"s,
            Delivered(Utf8Mark + "a\r\n\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z"));
  EXPECT_EQ(""s, Delivered(Utf8Mark));
}

TEST_F(TextStream, AMarkOfTheOtherByteOrderIsDeliveredAsItIs)
{
  EXPECT_EQ("\xFE\xFF\0a\0b"s, Delivered(BigEndianMark + "\0a\0b"s));
}

TEST_F(TextStream, FromTheStartTheMarkIsDeliveredToo)
{
  EXPECT_EQ(
      "\xFF\xFE"
      "a\0\n\0"s,
      DeliveredFromStart(Utf16Mark + "a\0\r\0\n\0"s));
  EXPECT_EQ(
      "\xFF\xFE"
      "a\0\n\0"s,
      DeliveredFromStart(Utf8Mark + "a\r\n"));
  EXPECT_EQ("ab\n"s, DeliveredFromStart("ab\r\n"));
  EXPECT_EQ("a"s, DeliveredFromStart("a"));
}

TEST_F(TextStream, TheEndIsThatOfTheFilesOwnBytes)
{
  EXPECT_EQ(6, SizeOf("ab\r\ncd"));
  EXPECT_EQ(8, SizeOf(Utf16Mark + "a\0\r\0\n\0"s));
  EXPECT_EQ(7, SizeOf(Utf8Mark + "ab\r\n"));
  EXPECT_EQ(2, SizeOf(Utf16Mark));
  EXPECT_EQ(0, SizeOf(""));
}

TEST_F(TextStream, AfterTheEndTheStartCanBeReadAgain)
{
  ASSERT_EQ(5, SizeOf(Utf8Mark + "ab"));
  EXPECT_EQ(""s, Rest());
  EXPECT_EQ(0, fseek(file, 0, SEEK_SET));
  EXPECT_EQ(
      "\xFF\xFE"
      "a\0b\0"s,
      Rest());
}

TEST_F(TextStream, ItemsOfTwoBytesAreCountedWhole)
{
  Open("abcde");
  wchar_t items[8] = {};
  EXPECT_EQ(2u, fread(items, sizeof(wchar_t), 8, file));
  EXPECT_EQ(L'a' + (L'b' << 8), items[0]);
  EXPECT_EQ(L'c' + (L'd' << 8), items[1]);
}

TEST_F(TextStream, ReadsMayFollowEachOtherInPiecesOfAnySize)
{
  Open("a\r\nbcdefg\r\nh");
  char piece[4] = {};
  EXPECT_EQ(2u, fread(piece, 1, 2, file));
  EXPECT_STREQ("a\n", piece);
  EXPECT_EQ(3u, fread(piece, 1, 3, file));
  EXPECT_STREQ("bcd", piece);
  EXPECT_EQ("efg\nh"s, Rest());
}

TEST_F(TextStream, AMissingFileGivesNullAndAnError)
{
  file = reinterpret_cast<FILE*>(this);
  EXPECT_EQ(2, _wfopen_s(&file, Path, Mode));
  EXPECT_EQ(nullptr, file);
}

TEST_F(TextStream, AFolderCannotBeOpened)
{
  MakeFolder("text.txt");
  EXPECT_EQ(13, _wfopen_s(&file, Path, Mode));
  EXPECT_EQ(nullptr, file);
}

TEST_F(TextStream, AnEmptyPathGivesNullAndAnError)
{
  EXPECT_EQ(2, _wfopen_s(&file, L"", Mode));
  EXPECT_EQ(nullptr, file);
}
