#include "tests/faults/DiaryLine.h"

#include <stdlib.h>

std::string FunctionIn(const std::string& line)
{
  return line.substr(0, line.find('('));
}

std::string HandleIn(const std::string& line)
{
  const bool behindKind = line.starts_with("SQLAllocHandle(") || line.starts_with("SQLFreeHandle(");
  const size_t begin = line.find(behindKind ? ' ' : '(') + 1;
  return begin == 0 ? "" : line.substr(begin, line.find_first_of(",)", begin) - begin);
}

std::string GivenHandleIn(const std::string& line)
{
  const size_t blank = line.rfind(' ');
  return blank == std::string::npos || line.find('#', blank) == std::string::npos
             ? ""
             : line.substr(blank + 1);
}

std::string QuotedIn(const std::string& line)
{
  const size_t first = line.find('"');
  const size_t last = line.rfind('"');
  return first == last ? "" : line.substr(first + 1, last - first - 1);
}

std::string CallIn(const std::string& line)
{
  return line.substr(0, line.rfind(" = "));
}

int ResultIn(const std::string& line)
{
  const size_t equals = line.rfind(" = ");
  return equals == std::string::npos ? 0 : atoi(line.c_str() + equals + 3);
}
