#ifndef FAULTS_DIARYLINE_H
#define FAULTS_DIARYLINE_H

#include <string>

// Parts of the diary's lines, empty where there is none:
//
//   SQLAllocHandle(STMT, dbc#1) = 0 stmt#7      function SQLAllocHandle, handle dbc#1, given stmt#7
//   SQLExecDirectW(stmt#7, "DROP TABLE A", -3) = 0      handle stmt#7, quoted DROP TABLE A
std::string FunctionIn(const std::string& line);
std::string HandleIn(const std::string& line);
std::string GivenHandleIn(const std::string& line);
std::string QuotedIn(const std::string& line);  // between the first mark and the last

// The line up to its result.
std::string CallIn(const std::string& line);

// The number behind the last equals sign; 0 if there is none.
int ResultIn(const std::string& line);

#endif
