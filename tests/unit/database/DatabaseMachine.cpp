#include "tests/unit/database/DatabaseMachine.h"

#include "tests/doubles/RegistryDouble.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/settings/SettingsMachine.h"

#include <string.h>

namespace {

const char* const TargetString = "DBQ=C:\\Data\\QuillBase.mdb;PWD=forge";
const char* const PatchString = "DBQ=C:\\Updates\\Spring.mdb;PWD=forge";

template <size_t Bytes>
[[gnu::noinline]] void SoilFrame()
{
  unsigned char frame[Bytes];
  memset(frame, 0xbd, sizeof(frame));
  // Keeps the compiler from leaving out what nobody reads.
  asm volatile("" : : "r"(frame) : "memory");
}

// As many frames of the size as the sanitizer has.
template <size_t Bytes>
void SoilFrames()
{
  constexpr size_t bytesOfOneSize = 1 << 20;
  for (size_t i = 0; i < bytesOfOneSize / Bytes; ++i)
    SoilFrame<Bytes>();
}

}  // namespace

void DatabaseMachine::TearDown()
{
  EXPECT_EQ(Odbc().OpenStatements(), 0);
  EXPECT_EQ(Odbc().OpenConnections(), 0);
  EXPECT_EQ(Odbc().OpenEnvironments(), 0);
  PlatformTest::TearDown();
}

OdbcDatabase& DatabaseMachine::Target()
{
  return Odbc().Database(TargetString);
}

OdbcDatabase& DatabaseMachine::Patch()
{
  return Odbc().Database(PatchString);
}

std::unique_ptr<QulDatabase> DatabaseMachine::OpenTarget()
{
  (void)Target();
  auto database = std::make_unique<QulDatabase>(WideText(TargetString).c_str(), L"QuillBase");
  EXPECT_TRUE(database->connected);
  ClearDiary();
  return database;
}

std::unique_ptr<QulPatchDatabase> DatabaseMachine::OpenPatch()
{
  (void)Patch();
  auto database = std::make_unique<QulPatchDatabase>(WideText(PatchString).c_str(), L"Spring.mdb");
  EXPECT_TRUE(database->connected);
  ClearDiary();
  return database;
}

void DatabaseMachine::SetLanguage(uint32_t languageId)
{
  Registry().SetNumber(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentPath, "Language",
                       languageId);
}

std::unique_ptr<QulDatabase> UnconnectedDatabase()
{
  auto database = std::make_unique<QulDatabase>(L"DBQ=C:\\none.mdb", L"QuillBase");
  EXPECT_FALSE(database->connected);
  ClearDiary();
  return database;
}

void SoilStack()
{
  SoilFrames<350>();
  SoilFrames<700>();
  SoilFrames<1500>();
  SoilFrames<3000>();
  SoilFrames<6000>();
  SoilFrames<300000>();
}

Lines TextsOf(const QulArray<QulString>& texts)
{
  Lines lines;
  for (int i = 0; i < texts.count; ++i)
    lines.push_back(TextOf(texts.data[i]));
  return lines;
}

std::string Letters(int count, char letter)
{
  return std::string(static_cast<size_t>(count), letter);
}

Lines DiaryAfter(const std::string& beginning)
{
  Lines lines;
  for (const std::string& line : Diary()) {
    if (line.compare(0, beginning.size(), beginning) == 0)
      lines.clear();
    else
      lines.push_back(line);
  }
  return lines;
}
