// Where on this machine the file lies that a program names.

#ifndef DRIVER_WINEPATH_H
#define DRIVER_WINEPATH_H

#include <string>
#include <string_view>

// Turns the path of a program that runs under Wine (C:\data\x.mdb, \data\x.mdb, data\x.mdb,
// \\server\share\x.mdb, each with slashes of either kind and with \\?\ before it) into a path of
// this machine, through the folder of drives in the Wine prefix. A path that starts with a slash is
// one of this machine already. Names in a Windows path match without regard to case where no exact
// match is. The result is absolute; it is empty if nothing of that name exists.
std::string FindFile(std::string_view path);

#endif
