// The patterns of catalogue calls match as a plain table of all beginnings says, alone and in the
// answers of the catalogue of a database whose names are like patterns themselves.

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <vector>

#include "driver/Catalogue.h"
#include "driver/Text.h"
#include "tests/fuzz/Require.h"

namespace {

struct Element
{
  enum class Kind
  {
    AnyText,
    AnyCharacter,
    Character
  };

  Kind kind;
  uint32_t character;
};

std::vector<uint32_t> Characters(std::string_view text)
{
  std::vector<uint32_t> characters;
  while (!text.empty())
    characters.push_back(TakeCharacter(text));
  return characters;
}

std::vector<Element> Elements(std::string_view pattern, uint32_t escape)
{
  const std::vector<uint32_t> characters = Characters(pattern);
  std::vector<Element> elements;
  for (size_t i = 0; i < characters.size(); ++i) {
    const bool escapes = escape != 0 && characters[i] == escape;
    if (escapes && i + 1 < characters.size())
      elements.push_back({Element::Kind::Character, characters[++i]});
    else if (!escapes && characters[i] == '%')
      elements.push_back({Element::Kind::AnyText, 0});
    else if (!escapes && characters[i] == '_')
      elements.push_back({Element::Kind::AnyCharacter, 0});
    else
      elements.push_back({Element::Kind::Character, characters[i]});
  }
  return elements;
}

// For each beginning of the text, whether the beginning of the pattern so far matches it.
bool MatchesByTable(std::string_view text, std::string_view pattern, uint32_t escape)
{
  const std::vector<uint32_t> characters = Characters(text);
  std::vector<bool> matches(characters.size() + 1, false);
  matches[0] = true;
  for (const Element& element : Elements(pattern, escape)) {
    std::vector<bool> next(matches.size(), false);
    if (element.kind == Element::Kind::AnyText)
      next[0] = matches[0];
    for (size_t i = 0; i < characters.size(); ++i) {
      if (element.kind == Element::Kind::AnyText)
        next[i + 1] = matches[i + 1] || next[i];
      else if (element.kind == Element::Kind::AnyCharacter)
        next[i + 1] = matches[i];
      else
        next[i + 1] = matches[i] && FoldCase(characters[i]) == FoldCase(element.character);
    }
    matches = next;
  }
  return matches.back();
}

const char* const TableNames[] = {"Parts",  "parts_x", "PartsX", "Teile ä", "100%", "a\\b",
                                  "_parts", "[x]",     "\"q\"",  "`t`",     "%",    "_"};
const char* const ColumnNames[] = {"Id", "id_", "Name%", "\\"};

class OddDatabase
{
public:
  OddDatabase()
  {
    (void)sqlite3_open(":memory:", &database);
    for (const char* table : TableNames) {
      char* const sql =
          sqlite3_mprintf("CREATE TABLE \"%w\" (\"%w\",\"%w\",\"%w\",\"%w\")", table,
                          ColumnNames[0], ColumnNames[1], ColumnNames[2], ColumnNames[3]);
      Require(sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK,
              "the tables can be made");
      sqlite3_free(sql);
    }
  }

  sqlite3* database = nullptr;
};

size_t CountRows(const std::unique_ptr<StoredRows>& rows)
{
  Require(rows != nullptr, "the catalogue answers");
  size_t count = 0;
  while (rows->Next() == Step::Row)
    ++count;
  return count;
}

template <size_t Size>
size_t CountMatches(const char* const (&names)[Size], const std::string& pattern)
{
  size_t count = 0;
  for (const char* name : names)
    count += MatchesByTable(name, pattern, '\\') ? 1 : 0;
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  static const OddDatabase odd;
  FuzzedDataProvider input(data, size);
  const uint32_t escapes[] = {0, '\\', '%', '_', 0xe4, input.ConsumeIntegral<uint8_t>()};
  const uint32_t escape = input.PickValueInArray(escapes);
  const std::string pattern = input.ConsumeRandomLengthString(64);
  const bool askTheCatalogue = input.ConsumeBool();
  const std::string text = input.ConsumeRemainingBytesAsString().substr(0, 256);

  Require(MatchesPattern(text, pattern, escape) == MatchesByTable(text, pattern, escape),
          "a pattern matches what its parts match");
  Require(MatchesPattern(text, "%", escape == '%' ? 0 : escape), "% matches every text");

  if (askTheCatalogue) {
    Catalogue catalogue(odd.database);
    const CatalogueName tables(pattern, CatalogueName::Meaning::Pattern);
    const CatalogueName columns(text, CatalogueName::Meaning::Pattern);
    const size_t tableCount = CountMatches(TableNames, pattern);
    const CatalogueName all(std::nullopt, CatalogueName::Meaning::Pattern);
    if (!pattern.empty())
      Require(CountRows(catalogue.Tables(all, all, tables, "TABLE")) == tableCount,
              "the catalogue lists the tables that match");
    Require(CountRows(catalogue.Columns(tables, columns)) ==
                tableCount * CountMatches(ColumnNames, text),
            "the catalogue lists the columns that match");
  }
  return 0;
}
