// Where a launch takes the connection of each database from: the configuration file in all its
// encodings and with all its faults, the registry, and the one fixed place.

#include "sandbox/common/SandboxFiles.h"
#include "tests/system/DatabaseMachine.h"

#include <algorithm>

namespace {

constexpr const wchar_t* ConnectionsKey = L"Software\\Norvane\\DatabaseConnections";

// Three of the databases lie in the data folder, and nothing else does.
class ConfigurationFile : public DatabaseTest
{
protected:
  void SetUp() override
  {
    DatabaseTest::SetUp();
    for (const char* name : {"QuillRules", "QuillBase", "QuillGratings"}) {
      LayCopy(std::string(name) + ".mdb", ProductFile(name));
    }
  }

  // The names of the databases that are opened with this file. All others have to be reported, each
  // with one text.
  std::vector<std::string> OpenedWith(const std::string& bytes)
  {
    WriteConfiguration(bytes);
    const DatabaseRun run = Launch();
    std::vector<std::string> names;
    for (const std::string& name : ProductDatabases) {
      for (const std::string& file : run.Opened()) {
        if (file == ProductFile(name)) {
          names.push_back(name);
        }
      }
    }
    EXPECT_EQ(run.Opened().size(), names.size());
    EXPECT_EQ(run.Traces(), ConnectFailures(17 - names.size()));
    return names;
  }

  std::vector<std::string> OpenedWithElements(const std::string& elements)
  {
    return OpenedWith(Configuration(elements));
  }

  // With a file that names one database, whose path holds a letter beyond ASCII.
  std::vector<std::string> OpenedWithOne(const std::string& bytes)
  {
    LayCopy("QuillBase.mdb", "St\xC3\xBCtzen.mdb");
    WriteConfiguration(bytes);
    return Launch().Opened();
  }

  // The update is given up with its one message after the patches were opened, and the host starts
  // all the same.
  void ExpectTheUpdateEnds(const std::string& bytes)
  {
    LayPatch("A.mdb", {});
    WriteConfiguration(bytes);
    const DatabaseRun run = Launch();
    EXPECT_EQ(run.debugOutput, (std::vector<std::string>{"\n", "\nCritical Error!!"}));
    EXPECT_EQ(run.Opened(), std::vector<std::string>{"DatabaseUpdate\\A.mdb"});
    EXPECT_EQ(run.traffic.closed, std::vector<std::string>());
  }

  const std::string rules = Element("QuillRules");
  const std::string base = Element("QuillBase");
  const std::string gratings = Element("QuillGratings");
  const std::string columns =
      Configuration("<DataSource Platform=\"x64\" Name=\"QuillBase\" Value=\"" +
                    ConnectionString("St\xC3\xBCtzen.mdb") + "\"/>");
};

using Names = std::vector<std::string>;

// The trace holds the lowest byte of each character.
const std::string ColumnsInTrace = "St\xFCtzen.mdb";

class RegisteredConnection : public DatabaseTest
{
protected:
  static void Register(const RegistryPlace& place, const std::string& file)
  {
    place.WriteText(ConnectionsKey, L"QuillProfiles2010", FromUtf8(ConnectionString(file)));
  }

  static void Lay(const std::string& file) { LayCopy("QuillProfiles2010.mdb", file); }
};

std::string Utf16(const std::string& text, bool bigEndian)
{
  std::string bytes;
  for (const wchar_t character : FromUtf8(text)) {
    const char low = static_cast<char>(character & 0xFF);
    const char high = static_cast<char>(character >> 8);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

std::string Without(const std::string& text, const std::string& part)
{
  const size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return std::string(text).erase(at, part.size());
}

std::string Replaced(const std::string& text, const std::string& part, const std::string& by)
{
  const size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return std::string(text).replace(at, part.size(), by);
}

}  // namespace

TEST_F(ConfigurationFile, NamesTheConnectionOfEachDatabase)
{
  EXPECT_EQ(OpenedWithElements(rules + base + gratings),
            (Names{"QuillRules", "QuillBase", "QuillGratings"}));
}

TEST_F(ConfigurationFile, InTheAnsiCodePage)
{
  // The code page is a Western one in the locale of the tests.
  EXPECT_EQ(OpenedWithOne(Replaced(columns, "\xC3\xBC", "\xFC")), Names{ColumnsInTrace});
}

TEST_F(ConfigurationFile, InUtf8WithAMark)
{
  EXPECT_EQ(OpenedWithOne("\xEF\xBB\xBF" + columns), Names{ColumnsInTrace});
}

TEST_F(ConfigurationFile, InUtf8WithoutAMarkItIsReadInTheAnsiCodePage)
{
  EXPECT_EQ(OpenedWithOne(columns), Names{});
}

TEST_F(ConfigurationFile, InUtf16WithAMark)
{
  EXPECT_EQ(OpenedWithOne("\xFF\xFE" + Utf16(columns, false)), Names{ColumnsInTrace});
}

TEST_F(ConfigurationFile, InUtf16OfTheOtherByteOrderItNamesNothing)
{
  EXPECT_EQ(OpenedWithOne("\xFE\xFF" + Utf16(columns, true)), Names{});
}

TEST_F(ConfigurationFile, AMissingOneLeavesTheOtherSourcesOfConnections)
{
  LayCopy("QuillCurrentProject.mdb", ProductFile("QuillCurrentProject"));
  EXPECT_EQ(Launch().Opened(), Names{ProductFile("QuillCurrentProject")});
}

TEST_F(ConfigurationFile, AnEmptyOneNamesNothing)
{
  EXPECT_EQ(OpenedWith(""), Names{});
}

TEST_F(ConfigurationFile, OneOfASingleCharacterNamesNothing)
{
  EXPECT_EQ(OpenedWith("x"), Names{});
}

TEST_F(ConfigurationFile, WithoutItsBeginningItNamesNothing)
{
  EXPECT_EQ(OpenedWith(Without(Configuration(rules), "<Kestrelforge>")), Names{});
}

TEST_F(ConfigurationFile, WithoutItsEndItNamesNothing)
{
  EXPECT_EQ(OpenedWith(Without(Configuration(rules), "</Kestrelforge>")), Names{});
}

TEST_F(ConfigurationFile, InOtherCapitalsItNamesNothing)
{
  EXPECT_EQ(OpenedWith(Replaced(Configuration(rules), "<Kestrelforge>", "<kestrelforge>")),
            Names{});
}

TEST_F(ConfigurationFile, AnElementThatLacksAnAttributeIsPassedOver)
{
  for (const std::string part : {"Platform=\"x64\"", "Name=\"QuillRules\"", "Value="}) {
    EXPECT_EQ(OpenedWithElements(base + Without(rules, part) + gratings),
              (Names{"QuillBase", "QuillGratings"}))
        << part;
  }
}

TEST_F(ConfigurationFile, AnElementThatLacksAClosingQuoteIsPassedOver)
{
  EXPECT_EQ(OpenedWithElements(Replaced(rules, ".mdb\" />", ".mdb />") + gratings),
            Names{"QuillGratings"});
}

TEST_F(ConfigurationFile, AnElementInSingleQuotesIsPassedOver)
{
  std::string quoted = rules;
  std::replace(quoted.begin(), quoted.end(), '"', '\'');
  EXPECT_EQ(OpenedWithElements(quoted + gratings), Names{"QuillGratings"});
}

TEST_F(ConfigurationFile, AnElementWithNothingInItIsPassedOver)
{
  EXPECT_EQ(OpenedWithElements("<DataSource/>" + rules), Names{"QuillRules"});
}

TEST_F(ConfigurationFile, AnElementWithoutItsEndRunsIntoTheNext)
{
  // Up to the end of the second they are read as one, and of its attributes none is new.
  EXPECT_EQ(OpenedWithElements(base + Without(rules, "/>") + gratings),
            (Names{"QuillRules", "QuillBase"}));
}

TEST_F(ConfigurationFile, AfterTheLastEndNothingIsRead)
{
  EXPECT_EQ(OpenedWithElements(base + Without(rules, "/>")), Names{"QuillBase"});
}

TEST_F(ConfigurationFile, TheAttributesMayStandInAnyOrderBesideOthers)
{
  const std::string element = "<DataSource Comment=\"rules\" Value=\"" +
                              ConnectionString(ProductFile("QuillRules")) +
                              "\"\r\n Name = \"QuillRules\" Platform\t=\t\"x64\"/>";
  EXPECT_EQ(OpenedWithElements(element), Names{"QuillRules"});
}

TEST_F(ConfigurationFile, ElementsOfAnotherPlatformDoNotCount)
{
  EXPECT_EQ(OpenedWithElements(Element("QuillRules", "Win32") + Element("QuillBase", "X64")),
            Names{});
}

TEST_F(ConfigurationFile, TheNameCountsInItsCapitalsOnly)
{
  EXPECT_EQ(OpenedWithElements(Replaced(rules, "\"QuillRules\"", "\"quillrules\"")), Names{});
}

TEST_F(ConfigurationFile, OfTwoElementsForOneDatabaseTheFirstCounts)
{
  const std::string elsewhere = Replaced(rules, "QuillRules.mdb", "NotThere.mdb");
  EXPECT_EQ(OpenedWithElements(rules + elsewhere), Names{"QuillRules"});
  EXPECT_EQ(OpenedWithElements(elsewhere + rules), Names{});
}

TEST_F(ConfigurationFile, AnEmptyValueIsNoConnection)
{
  EXPECT_EQ(OpenedWithElements("<DataSource Platform=\"x64\" Name=\"QuillRules\" Value=\"\"/>" +
                               rules + base),
            Names{"QuillBase"});
}

TEST_F(ConfigurationFile, AnElementInsideACommentCounts)
{
  EXPECT_EQ(OpenedWithElements("<!-- " + rules + " -->"), Names{"QuillRules"});
}

TEST_F(ConfigurationFile, WhatStandsAroundItsBodyIsNotLookedAt)
{
  EXPECT_EQ(OpenedWith(base + "<a/>" + Configuration(rules) + gratings), Names{"QuillRules"});
}

TEST_F(ConfigurationFile, ItServesNeitherRegisteredNorFixedDatabases)
{
  LayCopy("QuillProfiles2010.mdb", ProductFile("QuillProfiles2010"));
  LayCopy("NVCMapping2010.mdb", ProductFile("NVCMapping2010"));
  EXPECT_EQ(OpenedWithElements(Element("QuillProfiles2010") + Element("NVCMapping2010") +
                               Element("QuillCurrentProject") + rules),
            Names{"QuillRules"});
}

TEST_F(ConfigurationFile, ItsEndBeforeItsBeginningEndsTheUpdate)
{
  ExpectTheUpdateEnds("</Kestrelforge><Kestrelforge>" + rules);
}

TEST_F(ConfigurationFile, AnotherElementBetweenTwoEndsTheUpdate)
{
  ExpectTheUpdateEnds(Configuration(rules + "<Comment />" + base));
}

TEST_F(ConfigurationFile, AnUpdateThatEndsLeavesThePatchesAsTheyWere)
{
  LayPatch("A.mdb", {});
  std::string before;
  std::string after;
  ASSERT_TRUE(ReadWholeFile(DataPath("DatabaseUpdate\\A.mdb"), before));
  WriteConfiguration("</Kestrelforge><Kestrelforge>" + rules);
  EXPECT_EQ(Launch().Traces(), Names{"\nCritical Error!!"});
  ASSERT_TRUE(ReadWholeFile(DataPath("DatabaseUpdate\\A.mdb"), after));
  EXPECT_TRUE(before == after);
}

TEST_F(RegisteredConnection, OfTheMachineIsUsed)
{
  Lay("Machine.mdb");
  Register(Machine64, "Machine.mdb");
  EXPECT_EQ(Launch().Opened(), Names{"Machine.mdb"});
}

TEST_F(RegisteredConnection, OfTheUserWinsOverThatOfTheMachine)
{
  Lay("Machine.mdb");
  Lay("User.mdb");
  Register(Machine64, "Machine.mdb");
  Register(User, "User.mdb");
  EXPECT_EQ(Launch().Opened(), Names{"User.mdb"});
}

TEST_F(RegisteredConnection, OfTheUserThatIsEmptyHidesThatOfTheMachine)
{
  Lay("Machine.mdb");
  Register(Machine64, "Machine.mdb");
  User.WriteText(ConnectionsKey, L"QuillProfiles2010", L"");
  EXPECT_EQ(Launch().Opened(), Names{});
}

TEST_F(RegisteredConnection, IsLookedUpUnderTheNameOfTheDatabase)
{
  LayCopy("NVCMapping2010.mdb", "Mapping.mdb");
  Lay("Sections.mdb");
  Machine64.WriteText(ConnectionsKey, L"NVCMapping2010", FromUtf8(ConnectionString("Mapping.mdb")));
  Register(User, "Sections.mdb");
  EXPECT_EQ(Launch().Opened(), (Names{"Sections.mdb", "Mapping.mdb"}));
}

TEST_F(RegisteredConnection, OfAnyOtherDatabaseIsNotLookedAt)
{
  LayCopy("QuillRules.mdb", "Rules.mdb");
  Machine64.WriteText(ConnectionsKey, L"QuillRules", FromUtf8(ConnectionString("Rules.mdb")));
  EXPECT_EQ(Launch().Opened(), Names{});
}
