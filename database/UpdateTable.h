#ifndef DATABASE_UPDATETABLE_H
#define DATABASE_UPDATETABLE_H

#include "foundation/QulArray.h"
#include "foundation/QulString.h"

class QulDatabase;

// One thing to do: what is done with a table of one database, from a table of the patch. A table
// name may be a pattern with a star, until the step is expanded.
struct UpdateStep
{
  QulString database;  // logical name of the target
  QulString sourceTable;
  QulString targetTable;
  bool deleteRows = false;
  bool recreate = false;
  bool createIfMissing = false;
};

// The script of a patch: the rows of its stored table UpdateTable, in the order of their ID.
// Nothing is reported here.
class UpdateTable
{
public:
  // Reads the rows from the table, or from its variant in the language of the installation if the
  // patch has one. Texts are cut to 49 characters, and a NULL takes the text or flag of the row
  // before. The patch isn't kept. After a failure the rows so far stay.
  explicit UpdateTable(QulDatabase& patchDatabase);
  UpdateTable(const UpdateTable&) = delete;
  UpdateTable& operator=(const UpdateTable&) = delete;
  virtual ~UpdateTable() = default;

  // The steps for one target in the order in which they are to be carried out, with star patterns
  // expanded. Those that write InfoTableRelations come first and in reverse order, as they are:
  // that table tells the keys of all others.
  QulArray<UpdateStep> PrepareSteps(QulDatabase& patchDatabase, QulDatabase& targetDatabase) const;

  // Appends the steps that one row stands for: each source table with each target table. A pattern
  // without matches is taken as a name.
  static void ExpandStep(UpdateStep step, QulDatabase& patchDatabase, QulDatabase& targetDatabase,
                         QulArray<UpdateStep>& expanded);

  // Appends to matches, an empty array, the tables of database that start with the text in front of
  // the pattern's last star; case doesn't count. Nothing matches a pattern without a star, or whose
  // last star is its first character.
  // Where text stands behind the star too, those tables stay, or all tables of the database if
  // there were none, whose last characters, as many as there are behind the star, equal the text in
  // front of it.
  static void MatchTables(const QulString& pattern, QulDatabase& database,
                          QulArray<QulString>& matches);

  QulArray<UpdateStep> steps;
};

#endif
