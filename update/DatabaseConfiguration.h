#ifndef UPDATE_DATABASECONFIGURATION_H
#define UPDATE_DATABASECONFIGURATION_H

#include "foundation/QulArray.h"
#include "foundation/QulString.h"

#include <stdint.h>

// An entry of the configuration file.
struct DataSource
{
  QulString platform;
  QulString name;
  QulString value;  // a whole connection string
};

// The entries of the configuration file for all platforms, in their order in the file.
extern QulArray<DataSource> DataSourceTable;

// The connection string of the product's database of that name; the empty string if none is known.
// Two databases are registered in the registry, the current project lies at a fixed place below the
// data folder, and all others stand in the configuration file, which is read as long as it has
// given no entry. In the file, platform and name count in their exact spelling, and the first entry
// wins. Throws what LoadDatabaseConfiguration throws.
QulString GetConnectionString(const QulString& name);

// Appends the complete entries of the configuration file to DataSourceTable and returns how many
// that has then. Nothing is reported: a file that can't be read has none, and an entry that lacks
// an attribute is passed over. A file in which the end of the root element stands before its
// beginning, or the end of another element before the next entry, throws std::bad_alloc, unless
// the text ends with that beginning.
int32_t LoadDatabaseConfiguration();

#endif
