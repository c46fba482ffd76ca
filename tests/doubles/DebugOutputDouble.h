#ifndef DOUBLES_DEBUGOUTPUTDOUBLE_H
#define DOUBLES_DEBUGOUTPUTDOUBLE_H

// The debugger's side of OutputDebugStringW.

#include <string>
#include <vector>

// All texts since the last reset, one for each call, in order.
const std::vector<std::string>& DebugTexts();

#endif
