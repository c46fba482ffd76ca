#ifndef DATABASE_ATTRIBUTEVALUE_H
#define DATABASE_ATTRIBUTEVALUE_H

#include "foundation/QulArray.h"
#include "foundation/QulString.h"

class QulDatabase;

// A row of a version table.
struct AttributeValue
{
  QulString attribute;
  QulString value;  // decimal digits, as a rule
};

// Appends what the stored table holds to rows, as the driver delivers it. Rows that lack one of
// the two texts are left out, texts are cut to 49 characters, and a NULL takes the text that came
// before it. An unconnected database and a missing table give no rows; an error ends the
// reading and keeps the rows so far.
void ReadAttributeValues(const QulDatabase& database, const wchar_t* table,
                         QulArray<AttributeValue>& rows);

#endif
