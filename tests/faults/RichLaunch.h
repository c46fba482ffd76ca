#ifndef FAULTS_RICHLAUNCH_H
#define FAULTS_RICHLAUNCH_H

// A machine that gives a launch some of everything to do, and the launch on it from LauncherMain's
// first call to its last:
//
//   host        chosen by one of four routes
//   registry    the loader, the profile, 18 demand-load values, none of which is there yet
//   installer   two products whose repair is due, since the shared loader is older
//   databases   four of the product, in the registry, at the fixed place and in the configuration
//               file, the other 13 missing
//   patches     two, one that is damaged, and one for projects, with steps of all kinds
//   PATH        two folders of the add-on to be taken out, one to be put in front
//
// The databases are real files behind the live form of the ODBC double.

#include <stdint.h>

#include <map>
#include <set>
#include <string>
#include <vector>

enum class HostRoute
{
  Current,           // the host's own record of its current version
  DrawingClass,      // the class of drawing files, which is that of version 15
  RequestedVersion,  // /AcadVer with a version
  RequestedExactly   // /AcadVer with a version and a product
};

constexpr HostRoute HostRoutes[] = {HostRoute::Current, HostRoute::DrawingClass,
                                    HostRoute::RequestedVersion, HostRoute::RequestedExactly};

std::string NameOf(HostRoute route);

// How a machine differs from the whole one.
struct RichMachine
{
  HostRoute route = HostRoute::Current;
  // Without any database and any patch: what is left to a launch is quickly done.
  bool withDatabases = true;
  // Databases and patches that are not there: "QuillRules", "Spring.mdb".
  std::set<std::string> without;
  // Statements that change databases and patches beforehand, by their names.
  std::map<std::string, std::string> changes;
  uint32_t language = 1031;  // German
};

// Content of a database: the rows of each table, whose values stand in it as SQL literals with `|`
// between them, sorted. The first of them holds the table's columns.
using DatabaseContent = std::map<std::string, std::vector<std::string>>;

// What a launch has left behind.
struct LaunchOutcome
{
  int32_t exitCode = 0;
  std::vector<std::string> diary;
  std::vector<std::string> traces;              // without the line feed in front of each
  std::vector<std::string> started;             // hosts: "C:\Host\ABCD.exe /nologo x PATH=..."
  std::string path;                             // PATH of this process
  std::map<std::string, std::string> registry;  // written below HKCU: `key\value` and type and data
  std::vector<std::string> openKeys;            // registry keys that are still open
  int openSearches = 0;
  int openStreams = 0;
  int openEnvironments = 0;
  int openConnections = 0;
  int openStatements = 0;
  std::vector<std::string> misuses;
  std::map<std::string, DatabaseContent> databases;  // of the product, those that are there
};

// An empty machine becomes this one. What earlier launches of the process kept is forgotten. Order
// failures behind it, for it makes no call that counts.
void LayOut(const RichMachine& machine);

// The launch. LayOut has been called for it.
int32_t Launch(const RichMachine& machine);

// Takes what the launch has left, and its misuses. A database that fails its integrity check has
// the one table `damaged`.
LaunchOutcome TakeOutcome(int32_t exitCode);

// All three.
LaunchOutcome LaunchOn(const RichMachine& machine);

// Path of a database of the product or of a patch, by its name.
std::string FileOf(const std::string& name);

// True for a patch's name.
bool IsPatch(const std::string& name);

// The databases of the product that the whole machine has.
const std::vector<std::string>& RichDatabases();

#endif
