#include "tests/doubles/OdbcHandles.h"

#include <ctype.h>

#include <algorithm>

std::string KindName(SQLSMALLINT kind)
{
  switch (kind) {
    case SQL_HANDLE_ENV: return "ENV";
    case SQL_HANDLE_DBC: return "DBC";
    case SQL_HANDLE_STMT: return "STMT";
    default: return std::to_string(kind);
  }
}

void OdbcHandles::Add(SQLSMALLINT kind, SQLHANDLE value, SQLHANDLE parent)
{
  OdbcHandle& handle = handles[{kind, value}];
  handle = OdbcHandle();
  handle.number = ++given[kind];
  handle.parent = parent;
}

void OdbcHandles::Remove(SQLSMALLINT kind, SQLHANDLE value)
{
  if (kind == SQL_HANDLE_DBC)
    RemoveStatements(value);
  handles.erase({kind, value});
}

void OdbcHandles::RemoveStatements(SQLHDBC connection)
{
  std::erase_if(handles, [connection](const auto& entry) {
    return entry.first.first == SQL_HANDLE_STMT && entry.second.parent == connection;
  });
}

OdbcHandle* OdbcHandles::Find(SQLSMALLINT kind, SQLHANDLE value)
{
  const auto found = handles.find({kind, value});
  return found == handles.end() ? nullptr : &found->second;
}

bool OdbcHandles::HasConnections(SQLHENV environment) const
{
  return std::any_of(handles.begin(), handles.end(), [environment](const auto& entry) {
    return entry.first.first == SQL_HANDLE_DBC && entry.second.parent == environment;
  });
}

int OdbcHandles::Count(SQLSMALLINT kind) const
{
  return static_cast<int>(std::count_if(handles.begin(), handles.end(), [kind](const auto& entry) {
    return entry.first.first == kind;
  }));
}

std::string OdbcHandles::NameOf(SQLSMALLINT kind, SQLHANDLE value)
{
  if (value == SQL_NULL_HANDLE)
    return "null";
  std::string name = KindName(kind);
  for (char& c : name)
    c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
  const OdbcHandle* handle = Find(kind, value);
  return name + "#" + (handle == nullptr ? "?" : std::to_string(handle->number));
}
