#include "launcher/CommandLine.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct TypedLine
{
  const char* commandLine;
  const char* arguments;
};

void ExpectArguments(const TypedLine& line)
{
  EXPECT_EQ(std::string(SkipProgramName(line.commandLine)), line.arguments)
      << "command line: " << line.commandLine;
}

}  // namespace

TEST(CommandLine, TheNameEndsAtTheFirstWhiteSpace)
{
  const TypedLine lines[] = {{"p.exe a b", "a b"},
                             {"C:\\Forge\\p.exe drawing.dwg", "drawing.dwg"},
                             {"p.exe\ta", "a"},
                             {"p.exe\ra", "a"},
                             {"p.exe\na", "a"}};
  for (const TypedLine& line : lines)
    ExpectArguments(line);
}

TEST(CommandLine, ANameInQuotesHoldsBlanks)
{
  const TypedLine lines[] = {{"\"C:\\Program Files\\p.exe\" a", "a"},
                             {"\"C:\\Program Files\\p.exe\"", ""},
                             {"C:\\\"Program Files\"\\p.exe a", "a"},
                             {"\"C:\\Program Files\"\\p.exe a", "a"}};
  for (const TypedLine& line : lines)
    ExpectArguments(line);
}

TEST(CommandLine, ANameWithAnOpenQuoteTakesTheWholeLine)
{
  ExpectArguments({"\"C:\\Program Files\\p.exe a b", ""});
}

TEST(CommandLine, ABackslashDoesNotGuardAQuote)
{
  ExpectArguments({"\"C:\\dir\\\" a\" b", "a\" b"});
}

TEST(CommandLine, WithoutArgumentsNothingIsLeft)
{
  for (const char* line : {"", "p.exe", "p.exe ", "p.exe \t ", "   "})
    ExpectArguments({line, ""});
}

TEST(CommandLine, WhiteSpaceBehindTheNameGoesAndTheRestStays)
{
  ExpectArguments({"p.exe  \t\n  a  b  ", "a  b  "});
}

TEST(CommandLine, ControlCharactersCountAsWhiteSpace)
{
  ExpectArguments(
      {"p.exe\x01\x1F\x0B"
       "a",
       "a"});
}

TEST(CommandLine, ALineThatBeginsWithABlankHasAnEmptyName)
{
  ExpectArguments({" a b", "a b"});
}

TEST(CommandLine, QuotesOfTheArgumentsStay)
{
  ExpectArguments({"\"p.exe\" \"my drawing.dwg\" /x", "\"my drawing.dwg\" /x"});
}

TEST(CommandLine, CharactersBeyondAsciiAreNoWhiteSpace)
{
  const TypedLine lines[] = {{"p.exe \xE4rger.dwg", "\xE4rger.dwg"},
                             {"p.exe \xA0x", "\xA0x"},
                             {"p.exe \x80\xFFx", "\x80\xFFx"},
                             {"C:\\\xC4\xA0\x85\\p.exe x", "x"}};
  for (const TypedLine& line : lines)
    ExpectArguments(line);
}

TEST(CommandLine, TheResultPointsIntoTheLine)
{
  const char line[] = "\"p p\" arguments";
  EXPECT_EQ(SkipProgramName(line), line + 6);
  const char nameOnly[] = "p.exe";
  EXPECT_EQ(SkipProgramName(nameOnly), nameOnly + 5);
}
