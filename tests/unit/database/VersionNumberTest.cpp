#include "database/KFVersionTable.h"
#include "database/QulDatabase.h"

#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

#include <random>

namespace {

struct Version
{
  const char* majorNumber;
  const char* minorNumber;
  const char* servicePack;
  const char* build;
};

// An object that holds this version; an empty text leaves the row out.
std::unique_ptr<QulDatabase> DatabaseOf(const Version& version)
{
  auto database = UnconnectedDatabase();
  const struct
  {
    const wchar_t* attribute;
    const char* value;
  } rows[] = {{L"MajorNumber", version.majorNumber},
              {L"MinorNumber", version.minorNumber},
              {L"CommSPNumber", version.servicePack},
              {L"BuildNumber", version.build}};
  for (const auto& row : rows) {
    if (row.value[0] != '\0')
      database->versionTable->rows.Append({row.attribute, Handle(row.value)});
  }
  return database;
}

using Getter = int32_t (QulDatabase::*)() const;

struct NumberGetter
{
  const wchar_t* attribute;
  Getter get;
};

const NumberGetter Getters[] = {{L"MajorNumber", &QulDatabase::GetMajorNumber},
                                {L"MinorNumber", &QulDatabase::GetMinorNumber},
                                {L"CommMajorVersion", &QulDatabase::GetCommMajorVersion},
                                {L"CommMinorVersion", &QulDatabase::GetCommMinorVersion},
                                {L"BuildNumber", &QulDatabase::GetBuildNumber},
                                {L"CommSPNumber", &QulDatabase::GetCommSPNumber}};

bool IsServicePack(const NumberGetter& getter)
{
  return getter.get == &QulDatabase::GetCommSPNumber;
}

int32_t NumberOf(const NumberGetter& getter, const std::string& value)
{
  auto database = UnconnectedDatabase();
  database->versionTable->rows.Append({getter.attribute, Handle(value)});
  return (*database.*getter.get)();
}

class VersionNumber : public DatabaseMachine
{
};

}  // namespace

TEST_F(VersionNumber, ComesFromTheAttributeOfItsName)
{
  auto database = UnconnectedDatabase();
  int32_t number = 11;
  for (const NumberGetter& getter : Getters) {
    database->versionTable->rows.Append({getter.attribute, Handle(std::to_string(number))});
    EXPECT_EQ((*database.*getter.get)(), number);
    ++number;
  }
}

TEST_F(VersionNumber, IsTheWholeTextInDigitsOrZero)
{
  const struct
  {
    const char* text;
    int32_t number;
  } rows[] = {{"12", 12}, {"0", 0},   {"007", 7}, {"2147483647", 2147483647},
              {"", 0},    {"12a", 0}, {"a12", 0}, {"1a2", 0},
              {"-3", 0},  {"+3", 0},  {" 7", 0},  {"7 ", 0},
              {"1.5", 0}, {"1,5", 0}, {"abc", 0}, {"0x10", 0}};
  for (const NumberGetter& getter : Getters) {
    if (IsServicePack(getter))
      continue;
    for (const auto& row : rows)
      EXPECT_EQ(NumberOf(getter, row.text), row.number) << row.text;
  }
}

TEST_F(VersionNumber, OfTheServicePackIsWhatTheTextBeginsWith)
{
  const struct
  {
    const char* text;
    int32_t number;
  } rows[] = {{"12", 12}, {"12a", 12}, {"-3", -3}, {"+3", 3}, {" 7", 7}, {"7 ", 7},
              {"a12", 0}, {"abc", 0},  {"1.5", 1}, {"", 0},   {"-", 0},  {"\t 8x9", 8}};
  for (const auto& row : rows)
    EXPECT_EQ(NumberOf(Getters[5], row.text), row.number) << row.text;
}

TEST_F(VersionNumber, IsZeroForAMissingAttribute)
{
  auto database = UnconnectedDatabase();
  for (const NumberGetter& getter : Getters)
    EXPECT_EQ((*database.*getter.get)(), 0);
}

TEST_F(VersionNumber, IsZeroWithoutATable)
{
  auto database = UnconnectedDatabase();
  delete database->versionTable;
  database->versionTable = nullptr;
  for (const NumberGetter& getter : Getters)
    EXPECT_EQ((*database.*getter.get)(), 0);
}

TEST_F(VersionNumber, IsWhatWasReadAtTheConnection)
{
  Target().Table("KFVersion", {{"MajorNumber", "2"}, {"minornumber", "1"}, {"CommSPNumber", "3b"}});
  auto database = OpenTarget();
  EXPECT_EQ(database->GetMajorNumber(), 2);
  EXPECT_EQ(database->GetMinorNumber(), 1);
  EXPECT_EQ(database->GetCommSPNumber(), 3);
  EXPECT_EQ(database->GetBuildNumber(), 0);
}

TEST_F(VersionNumber, OrdersByMajorMinorServicePackAndBuild)
{
  const struct
  {
    Version left;
    Version right;
    bool leftIsOlder;
    bool rightIsOlder;
  } rows[] = {
      {{"2", "1", "0", "500"}, {"2", "1", "1", "3"}, true, false},
      {{"1", "9", "9", "9"}, {"2", "0", "0", "0"}, true, false},
      {{"2", "1", "9", "9"}, {"2", "2", "0", "0"}, true, false},
      {{"2", "1", "3", "9"}, {"2", "1", "3", "10"}, true, false},
      {{"9", "0", "0", "0"}, {"10", "0", "0", "0"}, true, false},
      {{"2", "1", "0", "500"}, {"2", "1", "0", "500"}, false, false},
      {{"2", "1", "0", "500"}, {"002", "1", "0x", "500"}, false, false},
      {{"", "", "", ""}, {"", "", "", ""}, false, false},
      {{"", "", "", ""}, {"0", "0", "0", "0"}, false, false},
      {{"", "", "", ""}, {"0", "0", "0", "1"}, true, false},
      {{"2", "1", "-1", "7"}, {"2", "1", "", "0"}, true, false},
      {{"2a", "1", "0", "0"}, {"1", "0", "0", "0"}, true, false},
      {{"0", "0", "-2147483648", "0"}, {"0", "0", "2147483647", "0"}, true, false},
      {{"3", "0", "0", "0"}, {"2", "9", "9", "9"}, false, true},
      {{"2", "3", "0", "0"}, {"2", "2", "9", "9"}, false, true},
      {{"2", "2", "5", "0"}, {"2", "2", "4", "9"}, false, true},
      {{"2", "2", "5", "2"}, {"2", "2", "5", "1"}, false, true},
  };
  for (const auto& row : rows) {
    const auto left = DatabaseOf(row.left);
    const auto right = DatabaseOf(row.right);
    const std::string label = std::string(row.left.majorNumber) + "." + row.left.minorNumber + "." +
                              row.left.servicePack + "." + row.left.build;
    EXPECT_EQ(left->IsOlderThan(right.get()), row.leftIsOlder) << label;
    EXPECT_EQ(right->IsOlderThan(left.get()), row.rightIsOlder) << label;
  }
}

TEST_F(VersionNumber, OfTheCommonVersionHasNoPartInTheOrder)
{
  const auto left = DatabaseOf({"2", "1", "0", "5"});
  const auto right = DatabaseOf({"2", "1", "0", "5"});
  left->versionTable->rows.Append({L"CommMajorVersion", L"1"});
  left->versionTable->rows.Append({L"CommMinorVersion", L"1"});
  right->versionTable->rows.Append({L"CommMajorVersion", L"2"});
  right->versionTable->rows.Append({L"CommMinorVersion", L"2"});
  EXPECT_FALSE(left->IsOlderThan(right.get()));
  EXPECT_FALSE(right->IsOlderThan(left.get()));
}

TEST_F(VersionNumber, IsNotOlderThanThatOfNoDatabase)
{
  EXPECT_FALSE(DatabaseOf({"", "", "", ""})->IsOlderThan(nullptr));
  EXPECT_FALSE(DatabaseOf({"2", "1", "0", "5"})->IsOlderThan(nullptr));
}

TEST_F(VersionNumber, IsNotOlderThanItself)
{
  const auto database = DatabaseOf({"2", "1", "0", "5"});
  EXPECT_FALSE(database->IsOlderThan(database.get()));
}

TEST_F(VersionNumber, OfAnUnconnectedDatabaseIsOlderThanAnyAboveZero)
{
  Target().Table("KFVersion", {{"BuildNumber", "1"}});
  auto connected = OpenTarget();
  const auto unconnected = UnconnectedDatabase();
  EXPECT_TRUE(unconnected->IsOlderThan(connected.get()));
  EXPECT_FALSE(connected->IsOlderThan(unconnected.get()));
}

TEST_F(VersionNumber, GivesAStrictWeakOrder)
{
  std::mt19937 random(20100331);
  const char* const values[] = {"", "0", "1", "2", "2a", "-1"};
  const auto pick = [&]() { return values[random() % 6]; };
  std::vector<std::unique_ptr<QulDatabase>> versions;
  for (int i = 0; i < 40; ++i)
    versions.push_back(DatabaseOf({pick(), pick(), pick(), pick()}));
  std::vector<std::vector<bool>> older(versions.size(), std::vector<bool>(versions.size()));
  for (size_t a = 0; a < versions.size(); ++a) {
    for (size_t b = 0; b < versions.size(); ++b)
      older[a][b] = versions[a]->IsOlderThan(versions[b].get());
  }
  const auto equal = [&](size_t a, size_t b) { return !older[a][b] && !older[b][a]; };
  for (size_t a = 0; a < versions.size(); ++a) {
    for (size_t b = 0; b < versions.size(); ++b) {
      EXPECT_FALSE(older[a][b] && older[b][a]) << a << " " << b;
      for (size_t c = 0; c < versions.size(); ++c) {
        EXPECT_FALSE(older[a][b] && older[b][c] && !older[a][c]) << a << " " << b << " " << c;
        EXPECT_FALSE(equal(a, b) && equal(b, c) && !equal(a, c)) << a << " " << b << " " << c;
      }
    }
  }
}
