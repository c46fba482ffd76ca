// Settings that were not stored as they should have been: of any type, length and end.
#include "settings/EnvironmentSettings.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/unit/settings/SettingsMachine.h"

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr size_t OfferedBytes = 8192;

class StoredBytes : public PlatformTest
{
protected:
  static void SetRaw(HKEY root, const std::string& path, const std::string& name, DWORD type,
                     const Bytes& bytes)
  {
    Registry().SetRaw(root, RegistryView::Native, path, name, type, bytes);
  }

  // Stores the bytes in every place that has a reader.
  static void SetEverywhere(DWORD type, const Bytes& bytes)
  {
    SetRaw(HKEY_LOCAL_MACHINE, EnvironmentPath, "BinPath", type, bytes);
    SetRaw(HKEY_CURRENT_USER, EnvironmentPath, "DataPath", type, bytes);
    SetRaw(HKEY_CURRENT_USER, ConnectionsPath, "Kernel", type, bytes);
  }

  static void ExpectEverywhere(const std::string& text)
  {
    EXPECT_EQ(text, Utf8(GetBinPath(false).Text()));
    EXPECT_EQ(text, Utf8(GetDataPath().Text()));
    EXPECT_EQ(text, Utf8(GetRegisteredConnection(L"Kernel").Text()));
    EXPECT_EQ(0, Registry().OpenHandleCount());
  }
};

std::string Letters(size_t count)
{
  std::string text;
  for (size_t i = 0; i < count; ++i)
    text += static_cast<char>('a' + i % 26);
  return text;
}

}  // namespace

TEST_F(StoredBytes, TheTypeIsNotLookedAt)
{
  const Bytes text = TextBytesWithTerminator("C:\\%A%");
  const DWORD types[] = {REG_NONE, REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_MULTI_SZ, REG_LINK};
  for (const DWORD type : types) {
    SetEverywhere(type, text);
    ExpectEverywhere("C:\\%A%");
  }
}

TEST_F(StoredBytes, ANumberIsReadAsCharacters)
{
  SetEverywhere(REG_DWORD, {0x41, 0x00, 0x42, 0x00});
  ExpectEverywhere("AB");
  SetEverywhere(REG_DWORD, {0x00, 0x00, 0x42, 0x00});
  ExpectEverywhere("");
}

TEST_F(StoredBytes, OfATextEndAtItsFirstTerminator)
{
  SetEverywhere(REG_MULTI_SZ, TextBytesWithTerminator(std::string("C:\\A\0C:\\B\0", 10)));
  ExpectEverywhere("C:\\A");
}

TEST_F(StoredBytes, BehindTheFirstTerminatorPlayNoPartInTheStripping)
{
  SetRaw(HKEY_LOCAL_MACHINE, EnvironmentPath, "BinPath", REG_SZ,
         TextBytesWithTerminator(std::string("C:\\A\0\\", 6)));
  EXPECT_EQ("C:\\A", Utf8(GetBinPath(false).Text()));
}

TEST_F(StoredBytes, WithoutATerminatorAreTheWholeText)
{
  SetEverywhere(REG_SZ, TextBytes("C:\\Data"));
  ExpectEverywhere("C:\\Data");
}

TEST_F(StoredBytes, WithTwoTerminatorsAreTheSameText)
{
  SetEverywhere(REG_SZ, TextBytesWithTerminator(std::string("C:\\Data\0", 8)));
  ExpectEverywhere("C:\\Data");
}

TEST_F(StoredBytes, OfOddNumberEndInACharacterWithAnEmptyUpperHalf)
{
  SetEverywhere(REG_SZ, {0x41, 0x00, 0x42});
  ExpectEverywhere("AB");
  SetEverywhere(REG_SZ, {0x41});
  ExpectEverywhere("A");
}

TEST_F(StoredBytes, ThatAreNoneAreTheEmptyText)
{
  SetEverywhere(REG_SZ, {});
  ExpectEverywhere("");
}

TEST_F(StoredBytes, OfAShortValueAreNotFollowedByThoseOfTheOneBefore)
{
  SetEverywhere(REG_SZ, TextBytesWithTerminator(Letters(2000)));
  ExpectEverywhere(Letters(2000));
  SetEverywhere(REG_SZ, TextBytes("C:"));
  ExpectEverywhere("C:");
}

TEST_F(StoredBytes, UpToTheDesignedLengthAreReadWhole)
{
  SetEverywhere(REG_SZ, TextBytesWithTerminator(Letters(2047)));
  ExpectEverywhere(Letters(2047));
}

TEST_F(StoredBytes, BeyondTheDesignedLengthOverrunNothingUpToTheOfferedSize)
{
  for (const size_t characters : {size_t{2048}, size_t{2049}, size_t{3000}, OfferedBytes / 2}) {
    SetEverywhere(REG_SZ, TextBytes(Letters(characters)));
    ExpectEverywhere(Letters(characters));
  }
}

TEST_F(StoredBytes, ThatFillTheOfferedSizeAreReadWithTheirTerminator)
{
  SetEverywhere(REG_SZ, TextBytesWithTerminator(Letters(OfferedBytes / 2 - 1)));
  ExpectEverywhere(Letters(OfferedBytes / 2 - 1));
}

TEST_F(StoredBytes, OfOneByteMoreThanTheOfferedSizeAreNotRead)
{
  Bytes bytes = TextBytes(Letters(OfferedBytes / 2));
  bytes.push_back(0);
  SetEverywhere(REG_SZ, bytes);
  ExpectEverywhere("");
  const std::string query = QueryLine("#1", "BinPath", "234");
  EXPECT_EQ(query, DiaryOf({"RegQueryValueExW"}).front());
}

TEST_F(StoredBytes, TooManyForTheUserLeadOnToTheMachine)
{
  const Bytes tooMany(100000, 0x41);
  SetRaw(HKEY_CURRENT_USER, EnvironmentPath, "DataPath", REG_SZ, tooMany);
  SetRaw(HKEY_CURRENT_USER, ConnectionsPath, "Kernel", REG_SZ, tooMany);
  SetMachine("DataPath", "C:\\Machine");
  SetMachineConnection("Kernel", "DSN=machine");
  EXPECT_EQ("C:\\Machine", Utf8(GetDataPath().Text()));
  EXPECT_EQ("DSN=machine", Utf8(GetRegisteredConnection(L"Kernel").Text()));
}

TEST_F(StoredBytes, ThatCouldNotBeReadLeaveTheResultOfTheCallerAlone)
{
  SetRaw(HKEY_LOCAL_MACHINE, EnvironmentPath, "BinPath", REG_SZ, Bytes(100000, 0x41));
  QulString result(L"old");
  EXPECT_EQ(0, ReadMachineRegistryString(GetEnvironmentKey(), L"BinPath", result, 0, false));
  EXPECT_EQ("old", Utf8(result.Text()));
}

TEST_F(StoredBytes, OfCharactersBeyondAsciiAreKept)
{
  SetEverywhere(REG_SZ, TextBytesWithTerminator("C:\\Käse €\\日本😀"));
  ExpectEverywhere("C:\\Käse €\\日本😀");
}
