// What of the configuration file becomes an entry. What makes it throw is in tests/memory.
#include "update/DatabaseConfiguration.h"

#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/Text.h"
#include "tests/unit/update/UpdateMachine.h"

#include <gtest/gtest.h>

#include <errno.h>

#include <utility>

namespace {

class DatabaseConfiguration : public UpdateMachine
{
protected:
  // The entries of a file of its own that has these bytes.
  static Lines EntriesOfFile(const std::string& bytes)
  {
    DataSourceTable.Free();
    PutFile(bytes);
    (void)Load();
    return Entries();
  }

  // The same with these elements inside the root element.
  static Lines EntriesOf(const std::string& elements)
  {
    return EntriesOfFile("<Kestrelforge>" + elements + "</Kestrelforge>");
  }

  // An element in front of it, and one behind.
  static Lines EntriesAround(const std::string& element)
  {
    return EntriesOf(Entry("First", "1") + element + Entry("Last", "3"));
  }

  static std::string Utf16(const std::string& utf8)
  {
    const std::vector<unsigned char> bytes = TextBytes(utf8);
    return std::string(bytes.begin(), bytes.end());
  }
};

struct ElementCase
{
  const char* element;
  const char* entry;
};

}  // namespace

TEST_F(DatabaseConfiguration, AnEntryHasThreeTexts)
{
  PutConfiguration(
      "<DataSource Platform=\"x64\" Name=\"QuillRules\" Value=\"DRIVER={Kestrel ODBC "
      "Driver};UID=;PWD=;DBQ=D:\\Data\\QuillRules.mdb\" />\n");
  EXPECT_EQ(Load(), 1);
  EXPECT_EQ(
      Entries(),
      Lines{"x64|QuillRules|DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=D:\\Data\\QuillRules.mdb"});
}

TEST_F(DatabaseConfiguration, EntriesOfAllPlatformsKeepTheOrderOfTheFile)
{
  EXPECT_EQ(EntriesOf(Entry("B", "1", "x86") + Entry("A", "2") + Entry("B", "3", "")),
            (Lines{"x86|B|1", "x64|A|2", "|B|3"}));
}

TEST_F(DatabaseConfiguration, DuplicatesAreKept)
{
  EXPECT_EQ(EntriesOf(Entry("A", "1") + Entry("A", "1")), (Lines{"x64|A|1", "x64|A|1"}));
}

TEST_F(DatabaseConfiguration, AReadingAddsToWhatIsThere)
{
  PutConfiguration(Entry("A", "1") + Entry("B", "2"));
  EXPECT_EQ(Load(), 2);
  EXPECT_EQ(Load(), 4);
  EXPECT_EQ(Entries(), (Lines{"x64|A|1", "x64|B|2", "x64|A|1", "x64|B|2"}));
}

TEST_F(DatabaseConfiguration, AReadingThatFindsNothingReturnsWhatIsThere)
{
  PutConfiguration(Entry("A", "1"));
  (void)Load();
  PutFile("<Kestrelforge>");
  EXPECT_EQ(Load(), 1);
  Files().Remove(ConfigurationFile);
  EXPECT_EQ(Load(), 1);
}

TEST_F(DatabaseConfiguration, MoreEntriesThanOneStepOfTheTableAreKept)
{
  std::string elements;
  for (int i = 0; i < 20; ++i)
    elements += Entry("A" + std::to_string(i), "v");
  PutConfiguration(elements);
  EXPECT_EQ(Load(), 20);
  EXPECT_EQ(Entries()[19], "x64|A19|v");
}

TEST_F(DatabaseConfiguration, AttributesStandInAnyOrder)
{
  const char* const orders[] = {
      "<DataSource Platform=\"p\" Name=\"n\" Value=\"v\"/>",
      "<DataSource Platform=\"p\" Value=\"v\" Name=\"n\"/>",
      "<DataSource Name=\"n\" Platform=\"p\" Value=\"v\"/>",
      "<DataSource Name=\"n\" Value=\"v\" Platform=\"p\"/>",
      "<DataSource Value=\"v\" Platform=\"p\" Name=\"n\"/>",
      "<DataSource Value=\"v\" Name=\"n\" Platform=\"p\"/>",
  };
  for (const char* element : orders)
    EXPECT_EQ(EntriesOf(element), Lines{"p|n|v"}) << element;
}

TEST_F(DatabaseConfiguration, OnlyTheQuotesBehindAnAttributesNameAreLookedAt)
{
  const ElementCase cases[] = {
      {"<DataSource\n\tPlatform = \"p\"\r\n Name\t=\n\"n\" Value\"v\"/>", "p|n|v"},
      {"<DataSourcePlatform=\"p\"Name=\"n\"Value=\"v\"/>", "p|n|v"},
      {"<DataSource Platform: x64 is \"p\" Name of it \"n\" Value!\"v\"/>", "p|n|v"},
      {"<DataSource Id=\"7\" Platform=\"p\" Name=\"n\" Value=\"v\" Note=\"x\"/>", "p|n|v"},
      {"<DataSource Platform=\" p \" Name=\"\tn\n\" Value=\" v \"/>", " p |\tn\n| v "},
      {"<DataSource Platform=\"p\" Name=\"n\" Value=\"'<v>\"/>", "p|n|'<v>"},
  };
  for (const ElementCase& c : cases)
    EXPECT_EQ(EntriesOf(c.element), Lines{c.entry}) << c.element;
}

TEST_F(DatabaseConfiguration, AnAttributesNameIsFoundInsideAnotherNameOrValueThatComesFirst)
{
  const ElementCase cases[] = {
      {"<DataSource Platform=\"p\" Name=\"Value\" Value=\"v\"/>", "p|Value| Value="},
      {"<DataSource Name=\"Platform\" Platform=\"p\" Value=\"v\"/>", " Platform=|Platform|v"},
      {"<DataSource Value=\"DBQ=Name\" Name=\"n\" Platform=\"p\"/>", "p| Name=|DBQ=Name"},
      {"<DataSource DisplayName=\"d\" Platform=\"p\" Name=\"n\" Value=\"v\"/>", "p|d|v"},
      {"<DataSource Platform=\"p\" Name=\"n\" Value=\"v\" Name=\"m\"/>", "p|n|v"},
  };
  for (const ElementCase& c : cases)
    EXPECT_EQ(EntriesOf(c.element), Lines{c.entry}) << c.element;
}

TEST_F(DatabaseConfiguration, AnElementThatIsNotCompleteGivesNoEntryAndTheOthersStand)
{
  const char* const elements[] = {
      "<DataSource Name=\"n\" Value=\"v\" />",
      "<DataSource Platform=\"x64\" Value=\"v\" />",
      "<DataSource Platform=\"x64\" Name=\"n\" />",
      "<DataSource Platform=\"x64\" Name=\"n\" Value />",
      "<DataSource Platform=\"x64\" Name=\"n\" Value= />",
      "<DataSource Platform=\"x64\" Name=\"n\" Value=\" />",
      "<DataSource Platform=\"x64\" Name=\"n\" Value=\"v />",
      "<DataSource Value=\"v\" Platform=\"x64\" Name=\"n />",
      "<DataSource Name=\"n\" Value=\"v\" Platform=\"x64 />",
      "<DataSource Platform=\"x64\" Value=\"v\" Name />",
      "<DataSource Name=\"n\" Value=\"v\" Platform />",
  };
  for (const char* element : elements)
    EXPECT_EQ(EntriesAround(element), (Lines{"x64|First|1", "x64|Last|3"})) << element;
}

TEST_F(DatabaseConfiguration, AnElementInSingleQuotesGivesNoEntry)
{
  EXPECT_EQ(EntriesAround("<DataSource Platform='x64' Name='n' Value='v' />"),
            (Lines{"x64|First|1", "x64|Last|3"}));
}

TEST_F(DatabaseConfiguration, AnElementOfNothingGivesNoEntry)
{
  for (const char* element : {"<DataSource/>", "<DataSource />", "<DataSource \t\n />"})
    EXPECT_EQ(EntriesAround(element), (Lines{"x64|First|1", "x64|Last|3"})) << element;
}

TEST_F(DatabaseConfiguration, AMissingQuoteTakesTheNextAttributesOpeningOne)
{
  EXPECT_EQ(EntriesOf("<DataSource Platform=\"x64 Name=\"n\" Value=\"v\"/>"),
            Lines{"x64 Name=|n|v"});
}

TEST_F(DatabaseConfiguration, EmptyTextsAreStored)
{
  EXPECT_EQ(EntriesOf("<DataSource Platform=\"\" Name=\"\" Value=\"\"/>"), Lines{"||"});
}

TEST_F(DatabaseConfiguration, NamesCountInTheirExactSpelling)
{
  const char* const elements[] = {
      "<datasource Platform=\"x64\" Name=\"n\" Value=\"v\" ",
      "<DATASOURCE Platform=\"x64\" Name=\"n\" Value=\"v\" ",
      "<DataSource platform=\"x64\" Name=\"n\" Value=\"v\" />",
      "<DataSource Platform=\"x64\" NAME=\"n\" Value=\"v\" />",
      "<DataSource Platform=\"x64\" Name=\"n\" value=\"v\" />",
  };
  for (const char* element : elements)
    EXPECT_EQ(EntriesAround(element), (Lines{"x64|First|1", "x64|Last|3"})) << element;
}

TEST_F(DatabaseConfiguration, TheRootElementCountsInItsExactSpelling)
{
  const std::string entry = Entry("n", "v");
  for (const char* open : {"<kestrelforge>", "<Kestrelforge >", "<Kestrelforge a=\"b\">", ""})
    EXPECT_EQ(EntriesOfFile(open + entry + "</Kestrelforge>"), Lines()) << open;
  for (const char* close : {"</kestrelforge>", "</Kestrelforge >", "<Kestrelforge/>", ""})
    EXPECT_EQ(EntriesOfFile("<Kestrelforge>" + entry + close), Lines()) << close;
}

TEST_F(DatabaseConfiguration, WhatStandsOutsideTheRootElementIsIgnored)
{
  EXPECT_EQ(EntriesOfFile(Entry("Before", "1") + "/> <DataSource <Kestrelforge>" +
                          Entry("Inside", "2") + "</Kestrelforge> /> " + Entry("Behind", "3")),
            Lines{"x64|Inside|2"});
}

TEST_F(DatabaseConfiguration, OnlyTheFirstRootElementCounts)
{
  const std::string first = "<Kestrelforge>" + Entry("A", "1") + "</Kestrelforge>";
  EXPECT_EQ(EntriesOfFile(first + "<Kestrelforge>" + Entry("B", "2") + "</Kestrelforge>"),
            Lines{"x64|A|1"});
  EXPECT_EQ(EntriesOf("<Kestrelforge>" + Entry("B", "2")), Lines{"x64|B|2"});
}

TEST_F(DatabaseConfiguration, ARootElementOfNothingGivesNoEntry)
{
  for (const char* elements : {"", "\n", "/>", "<DataSource", "text"})
    EXPECT_EQ(EntriesOf(elements), Lines()) << elements;
}

TEST_F(DatabaseConfiguration, CommentsAreNotRecognised)
{
  EXPECT_EQ(EntriesOf("<!-- " + Entry("A", "1") + " -->"), Lines{"x64|A|1"});
}

TEST_F(DatabaseConfiguration, ReferencesAreNotDecoded)
{
  EXPECT_EQ(EntriesOf(Entry("a&amp;b", "&quot;&#65;")), Lines{"x64|a&amp;b|&quot;&#65;"});
}

TEST_F(DatabaseConfiguration, AnElementWithAClosingTagOfItsOwnRunsOnToTheNextEnd)
{
  EXPECT_EQ(EntriesOf("<DataSource Platform=\"p\" Name=\"n\" Value=\"v\"></DataSource>" +
                      Entry("Next", "2") + Entry("Last", "3")),
            (Lines{"p|n|v", "x64|Last|3"}));
}

TEST_F(DatabaseConfiguration, AnElementWithoutAnEndIsLostWithAllThatFollow)
{
  EXPECT_EQ(EntriesOf(Entry("First", "1") + "<DataSource Platform=\"p\" Name=\"n\" Value=\"v\">"
                                            "<DataSource Platform=\"p\" Name=\"n\" Value=\"v\">"),
            Lines{"x64|First|1"});
}

TEST_F(DatabaseConfiguration, AnElementWithoutAnEndMakesOnePieceWithTheNext)
{
  EXPECT_EQ(EntriesOf("<DataSource Platform=\"p\" Name=\"n\" >" + Entry("Next", "2") +
                      Entry("Last", "3")),
            (Lines{"p|n|2", "x64|Last|3"}));
}

TEST_F(DatabaseConfiguration, AValueThatHoldsTheEndOfAnElementIsCutThere)
{
  EXPECT_EQ(EntriesOf(Entry("First", "1") +
                      "<DataSource Platform=\"x64\" Name=\"n\" Value=\"http:/>x\" />"),
            Lines{"x64|First|1"});
}

TEST_F(DatabaseConfiguration, AnElementWhoseNameOnlyBeginsSoCounts)
{
  EXPECT_EQ(EntriesOf("<DataSources Platform=\"p\" Name=\"n\" Value=\"v\"/>"), Lines{"p|n|v"});
}

TEST_F(DatabaseConfiguration, ARootThatEndsBeforeItBeginsGivesNoEntryIfNothingIsBehind)
{
  EXPECT_EQ(EntriesOfFile("</Kestrelforge>" + Entry("n", "v") + "<Kestrelforge>"), Lines());
}

TEST_F(DatabaseConfiguration, AnEndBeforeTheNextElementIsPassedOverIfNothingIsBehind)
{
  EXPECT_EQ(EntriesOf(Entry("First", "1") + "<Other/><DataSource"), Lines{"x64|First|1"});
}

TEST_F(DatabaseConfiguration, EndsBehindTheLastElementDoNoHarm)
{
  EXPECT_EQ(EntriesOf(Entry("First", "1") + "<Other/> />"), Lines{"x64|First|1"});
}

TEST_F(DatabaseConfiguration, IsReadInTheAnsiCodePageUnlessAMarkSaysOtherwise)
{
  EXPECT_EQ(EntriesOf("<DataSource Platform=\"x64\" Name=\"n\" Value=\"\x80\xE4\"/>"),
            Lines{"x64|n|\xE2\x82\xAC\xC3\xA4"});
  EXPECT_EQ(EntriesOf(Entry("n", "\xC3\xA4")), Lines{"x64|n|\xC3\x83\xC2\xA4"});
}

TEST_F(DatabaseConfiguration, IsReadInTheEncodingOfItsMark)
{
  const std::string text =
      "<Kestrelforge>\r\n" + Entry("n", "\xE2\x82\xAC") + "</Kestrelforge>\r\n";
  EXPECT_EQ(EntriesOfFile("\xFF\xFE" + Utf16(text)), Lines{"x64|n|\xE2\x82\xAC"});
  EXPECT_EQ(EntriesOfFile("\xEF\xBB\xBF" + text), Lines{"x64|n|\xE2\x82\xAC"});
}

TEST_F(DatabaseConfiguration, AMarkMoreIsTextOutsideTheRootElement)
{
  const std::string text = "<Kestrelforge>" + Entry("n", "v") + "</Kestrelforge>";
  EXPECT_EQ(EntriesOfFile("\xFF\xFE\xFF\xFE" + Utf16(text)), Lines{"x64|n|v"});
  EXPECT_EQ(EntriesOfFile("\xEF\xBB\xBF\xEF\xBB\xBF" + text), Lines{"x64|n|v"});
}

TEST_F(DatabaseConfiguration, SixteenBitTextWithoutAMarkGivesNothing)
{
  const std::string text = "<Kestrelforge>" + Entry("n", "v") + "</Kestrelforge>";
  EXPECT_EQ(EntriesOfFile(Utf16(text)), Lines());
}

TEST_F(DatabaseConfiguration, TextOfTheOtherByteOrderIsNotSwapped)
{
  const std::string text = "<Kestrelforge>" + Entry("n", "v") + "</Kestrelforge>";
  std::string swapped = Utf16(text);
  for (size_t i = 0; i < swapped.size(); i += 2)
    std::swap(swapped[i], swapped[i + 1]);
  EXPECT_EQ(EntriesOfFile("\xFE\xFF" + swapped), Lines());
  EXPECT_EQ(EntriesOfFile("\xFE\xFF" + Utf16(text)), Lines{"x64|n|v"});
}

TEST_F(DatabaseConfiguration, ANarrowMarkBehindTwoBytesAnnouncesSixteenBitText)
{
  const std::string text = "<Kestrelforge>" + Entry("n", "v") + "</Kestrelforge>";
  EXPECT_EQ(EntriesOfFile("  \xEF\xBB\xBF" + Utf16(text)), Lines{"x64|n|v"});
  EXPECT_EQ(EntriesOfFile("  \xEF\xBB\xBF" + text), Lines());
  EXPECT_EQ(EntriesOfFile("   \xEF\xBB\xBF" + text), Lines{"x64|n|v"});
}

TEST_F(DatabaseConfiguration, ATerminatorEndsTheFile)
{
  EXPECT_EQ(EntriesOfFile("<Kestrelforge>" + std::string(1, '\0') + "</Kestrelforge>"), Lines());
}

TEST_F(DatabaseConfiguration, TheFileIsClosedOnceItIsRead)
{
  PutConfiguration(Entry("n", "v"));
  (void)Load();
  EXPECT_EQ(Files().OpenStreams(), 0);
}

TEST_F(DatabaseConfiguration, AFileThatIsMissingOrCanNotBeReadGivesNothing)
{
  EXPECT_EQ(LoadDatabaseConfiguration(), 0);
  Files().MakeFolder(ConfigurationFile);
  EXPECT_EQ(LoadDatabaseConfiguration(), 0);
  Files().Remove(ConfigurationFile);
  PutConfiguration(Entry("n", "v"));
  FailCall("_wfopen_s", 1, EACCES);
  EXPECT_EQ(LoadDatabaseConfiguration(), 0);
}

TEST_F(DatabaseConfiguration, AnEmptyFileIsNotReadAtAll)
{
  PutFile("");
  // The leak check would see the buffers of a reading.
  EXPECT_EQ(LoadDatabaseConfiguration(), 0);
  EXPECT_EQ(Files().OpenStreams(), 0);
}

TEST_F(DatabaseConfiguration, AFileOfOneByteIsRead)
{
  PutFile("x");
  EXPECT_EQ(Load(), 0);
  EXPECT_EQ(DiaryOf({"MultiByteToWideChar"}),
            Lines{"MultiByteToWideChar(0, 0x0, \"x\", -1, 524288) = 2"});
}

TEST_F(DatabaseConfiguration, TheFileLiesBelowTheDataPath)
{
  SetDataPath("D:\\Other data\\");
  (void)LoadDatabaseConfiguration();
  EXPECT_EQ(DiaryOf({"_wfopen_s"}),
            Lines{"_wfopen_s(\"D:\\Other data\\Configuration\\DatabaseConfiguration.xml\", \"r, "
                  "ccs=UNICODE\") = 2"});
}

TEST_F(DatabaseConfiguration, WithoutADataPathTheFileIsLookedForFromTheRoot)
{
  SetDataPath("");
  Files().Put("C:\\Configuration\\DatabaseConfiguration.xml",
              "<Kestrelforge>" + Entry("n", "v") + "</Kestrelforge>");
  EXPECT_EQ(Load(), 1);
}

TEST_F(DatabaseConfiguration, NothingIsReported)
{
  (void)LoadDatabaseConfiguration();
  PutFile("<Kestrelforge><DataSource /></Kestrelforge>");
  EXPECT_EQ(Load(), 0);
  EXPECT_EQ(DiaryOf({"OutputDebugStringW"}), Lines());
}
