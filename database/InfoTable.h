#ifndef DATABASE_INFOTABLE_H
#define DATABASE_INFOTABLE_H

#include "foundation/QulArray.h"
#include "foundation/QulString.h"

#include <stdint.h>

class QulDatabase;

// A row of the stored table Info. Rows of other types than the two below are kept and not used.
struct InfoRow
{
  // True for a row that lists the columns of table for each language. Null counts as empty; names
  // and types compare without regard to case.
  bool IsLanguageDependent(const wchar_t* table) const;
  // The same for a row that lists a table for each language.
  bool IsLanguageDependentTable(const wchar_t* table) const;

  QulString name;
  QulString value;
  QulString type;
};

// Which tables and columns of one database hold which language, and which language is installed.
// Lists are counted without their empty places.
class InfoTable
{
public:
  // Reads the language from the registry and the rows from the database, which isn't kept. Texts
  // are cut to 49, 65,534 and 254 characters, and a NULL takes the text of the row before. Reports
  // nothing: a language that can't be read is 9, and rows that can't are missing.
  explicit InfoTable(const QulDatabase& database);
  InfoTable(const InfoTable&) = delete;
  InfoTable& operator=(const InfoTable&) = delete;
  virtual ~InfoTable() = default;

  // The installation's place in a list of variants: 4 for a language that has none of its own.
  // Place 0 holds the base, which no language has.
  int32_t LanguageIndex() const;

  // True if a row lists variants of table. answer becomes the installation's variant if the list
  // reaches that far; else it stays as it is.
  bool ResolveTableName(const wchar_t* table, QulString& answer) const;

  // True, with the name in answer, if another column of table holds the text of column in the
  // installation's language; else answer stays as it is.
  bool FindAlternateColumn(const wchar_t* table, const wchar_t* column, QulString& answer) const;

  // Appends the columns of table for all languages. Names have two characters or more: a shorter
  // one isn't taken for such a column.
  void CollectAlternateColumns(const wchar_t* table, QulArray<QulString>& columns) const;

  QulArray<InfoRow> rows;  // in the order of the driver
  int32_t languageId;      // Windows language identifier

private:
  void ReadRows(const QulDatabase& database);
};

#endif
