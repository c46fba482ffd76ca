#ifndef BENCH_DRIVER_SIDE_H
#define BENCH_DRIVER_SIDE_H

#include <string>
#include <vector>

// One way to execute statements on a database of its own, each statement by itself.
class Side
{
public:
  virtual ~Side() = default;
  Side() = default;
  Side(const Side&) = delete;
  Side& operator=(const Side&) = delete;

  // Ends the program with a sentence if the statement fails.
  virtual void Execute(const std::string& sql) = 0;
  // Seconds that the statements take, each with a fresh statement handle. Texts are brought into
  // the form of the side beforehand.
  virtual double Time(const std::vector<std::string>& statements) = 0;
};

// Through the driver manager and the driver. The file exists.
Side* NewOdbcSide(const std::string& file);
// By SQLite's C interface, with the driver's collations and the journal that the driver uses.
Side* NewSqliteSide(const std::string& file);

[[noreturn]] void Fail(const std::string& what, const std::string& why);

#endif
