// The cost of one autocommitted literal statement through driver manager and driver, in terms of
// what SQLite needs for it.
// usage: driver_bench [--rounds N] [--limit RATIO]; fails if a ratio is above the limit.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numeric>
#include <string>

#include "bench/driver/Side.h"

namespace {

const int RowCount = 2000;

struct Options
{
  int rounds = 15;
  double limit = 1e9;
};

// A kind of key, as columns and as the value of a row.
struct KeyKind
{
  const char* name;
  const char* definition;
  const char* before;
  const char* after;
};

const KeyKind KeyKinds[] = {
    {"number key", "[Id] LONG PRIMARY KEY, [A] LONG, [B] DOUBLE, [C] LONG, [D] DOUBLE", "", ""},
    {"text key", "[Id] TEXT(20) PRIMARY KEY, [A] LONG, [B] DOUBLE, [C] MEMO, [D] TEXT(50)",
     "'Bolt M16x", "'"}};

std::string Key(const KeyKind& kind, int row)
{
  return kind.before + std::to_string(row) + kind.after;
}

// A change that changes nothing is not written by SQLite, so each round has values of its own.
std::vector<std::string> Updates(const KeyKind& kind, int firstRow, int round)
{
  std::vector<std::string> statements;
  for (int row = firstRow; row < firstRow + RowCount; ++row)
    statements.push_back("UPDATE [T] SET [A]=" + std::to_string(row + round + 1) +
                         ",[B]=2.5,[C]='17',[D]='3' WHERE [Id]=" + Key(kind, row));
  return statements;
}

std::vector<std::string> Inserts(const KeyKind& kind)
{
  std::vector<std::string> statements;
  for (int row = 0; row < RowCount; ++row)
    statements.push_back("INSERT INTO [T] ([Id],[A],[B],[C],[D]) VALUES (" + Key(kind, row) + "," +
                         std::to_string(row) + ",2.5,'17','3')");
  return statements;
}

// Times of one kind of statement. Both sides take turns slice by slice, and of each slice the best
// round counts, so that what else the machine does falls out.
class Best
{
public:
  void Add(Side& odbcSide, Side& sqliteSide, const std::vector<std::string>& statements)
  {
    for (size_t slice = 0; slice < SliceCount; ++slice) {
      const auto start = statements.begin() + static_cast<std::ptrdiff_t>(slice) * SliceRows;
      const std::vector<std::string> part(start, start + SliceRows);
      odbc[slice] = std::min(odbc[slice], odbcSide.Time(part));
      sqlite[slice] = std::min(sqlite[slice], sqliteSide.Time(part));
    }
  }
  // Microseconds of one statement.
  double Odbc() const { return Average(odbc); }
  double Sqlite() const { return Average(sqlite); }
  double Ratio() const { return Odbc() / Sqlite(); }

private:
  static const int SliceCount = 20;
  static const int SliceRows = RowCount / SliceCount;
  using Slices = std::array<double, SliceCount>;

  static Slices Unmeasured()
  {
    Slices slices;
    slices.fill(1e9);
    return slices;
  }
  static double Average(const Slices& slices)
  {
    return 1e6 * std::accumulate(slices.begin(), slices.end(), 0.0) / RowCount;
  }

  Slices odbc = Unmeasured();
  Slices sqlite = Unmeasured();
};

// Prints a line of the table. False if the ratio is above the limit.
bool Report(const KeyKind& kind, const char* statement, const Best& best, const Options& options)
{
  const bool isWithin = best.Ratio() <= options.limit;
  printf("%-11s %-18s %8.2f %8.2f %7.2f%s\n", kind.name, statement, best.Odbc(), best.Sqlite(),
         best.Ratio(), isWithin ? "" : "  above the limit");
  return isWithin;
}

bool Measure(const KeyKind& kind, const std::filesystem::path& folder, const Options& options)
{
  const std::string odbcFile = (folder / "odbc.mdb").string();
  const std::string sqliteFile = (folder / "sqlite.mdb").string();
  std::ofstream(odbcFile, std::ios::trunc).flush();
  std::ofstream(sqliteFile, std::ios::trunc).flush();
  const std::unique_ptr<Side> odbc(NewOdbcSide(odbcFile));
  const std::unique_ptr<Side> sqlite(NewSqliteSide(sqliteFile));
  const std::string create = std::string("CREATE TABLE [T] (") + kind.definition + ")";
  Best insert;
  Best update;
  Best miss;
  for (int round = 0; round < options.rounds; ++round) {
    for (Side* side : {odbc.get(), sqlite.get()}) {
      side->Execute("DROP TABLE IF EXISTS [T]");
      side->Execute(create);
    }
    insert.Add(*odbc, *sqlite, Inserts(kind));
    update.Add(*odbc, *sqlite, Updates(kind, 0, round));
    miss.Add(*odbc, *sqlite, Updates(kind, RowCount, round));
  }
  bool isWithin = Report(kind, "INSERT", insert, options);
  isWithin &= Report(kind, "UPDATE", update, options);
  isWithin &= Report(kind, "UPDATE of no row", miss, options);
  return isWithin;
}

Options ReadOptions(int argumentCount, char** arguments)
{
  Options options;
  for (int i = 1; i + 1 < argumentCount; i += 2) {
    const std::string name = arguments[i];
    if (name == "--rounds")
      options.rounds = std::atoi(arguments[i + 1]);
    else if (name == "--limit")
      options.limit = std::atof(arguments[i + 1]);
    else
      Fail("unknown option", name);
  }
  return options;
}

}  // namespace

void Fail(const std::string& what, const std::string& why)
{
  fprintf(stderr, "%s: %s\n", what.c_str(), why.c_str());
  exit(2);
}

int main(int argumentCount, char** arguments)
{
  const Options options = ReadOptions(argumentCount, arguments);
  std::string pattern = (std::filesystem::temp_directory_path() / "driver-bench-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr)
    Fail("temporary folder", pattern);
  printf("Microseconds a statement, best of %d rounds of %d\n", options.rounds, RowCount);
  printf("%-11s %-18s %8s %8s %7s\n", "table", "statement", "driver", "SQLite", "ratio");
  bool isWithin = true;
  for (const KeyKind& kind : KeyKinds)
    isWithin &= Measure(kind, pattern, options);
  std::filesystem::remove_all(pattern);
  return isWithin ? 0 : 1;
}
