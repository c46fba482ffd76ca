#ifndef TESTS_KILLS_STOREDCONTENT_H
#define TESTS_KILLS_STOREDCONTENT_H

#include <string>

// What a database file holds, with what its log or journal adds, as SQLite alone reads it from a
// copy: tables, columns and rows. A file that can't be read, or is not sound, gives a text that
// begins with "damaged".
std::string StoredContent(const std::string& path);

#endif
