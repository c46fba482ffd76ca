// The definitions of tables in the dialect that programs write, and what SQLite needs to be told so
// that the columns behave as their types say.

#ifndef DRIVER_TABLEDEFINITION_H
#define DRIVER_TABLEDEFINITION_H

#include <string>
#include <string_view>

// True if the statement may be a CREATE TABLE or an ALTER TABLE; a look at its first word.
bool MayDefineTable(std::string_view statement);

// Mends the declared types of CREATE TABLE and of ALTER TABLE ... ADD COLUMN:
//  - text columns keep text as it is ('007' stays '007') and compare without regard to case,
//  - dates stay text and compare as the moments that they mean,
//  - binary columns keep their bytes,
//  - a COUNTER that is the whole key counts by itself, and no other integer does,
//  - a column of the key doesn't take NULL.
// All else, and every statement that isn't understood, comes back as it is.
std::string MendTableDefinition(std::string_view statement);

#endif
