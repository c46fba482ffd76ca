#ifndef FAULTS_CONTENT_H
#define FAULTS_CONTENT_H

#include "tests/faults/RichLaunch.h"

// Reads a database file past ODBC. One that can't be read or fails its integrity check has the one
// table `damaged`, with what SQLite says about it.
DatabaseContent ReadContent(const std::string& unixPath);

// Runs statements with a semicolon between them. Empty, or what SQLite says.
std::string ChangeContent(const std::string& unixPath, const std::string& statements);

#endif
