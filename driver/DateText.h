// Dates as text, the form in which a database keeps them.

#ifndef DRIVER_DATETEXT_H
#define DRIVER_DATETEXT_H

#include <cstdint>
#include <string>
#include <string_view>

#include "driver/Odbc.h"

// Reads d/m/yyyy or yyyy-mm-dd, alone or followed by h:mm, h:mm:ss or h:mm:ss.fraction behind a
// blank or a T; or a time alone, which is of 30 December 1899. False, with moment untouched, for
// anything else and for dates that no calendar has.
bool ReadMoment(std::string_view text, SQL_TIMESTAMP_STRUCT& moment);

bool IsRealMoment(const SQL_TIMESTAMP_STRUCT& moment);

// yyyy-mm-dd hh:mm:ss, and the fraction if there is one.
std::string WriteMoment(const SQL_TIMESTAMP_STRUCT& moment);

int CompareMoments(const SQL_TIMESTAMP_STRUCT& left, const SQL_TIMESTAMP_STRUCT& right);

#endif
