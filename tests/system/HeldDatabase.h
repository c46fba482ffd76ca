#ifndef TESTS_SYSTEM_HELDDATABASE_H
#define TESTS_SYSTEM_HELDDATABASE_H

#include <string>

// A database that a process of the machine outside of Wine has locked, as long as the object lives.
class HeldDatabase
{
public:
  explicit HeldDatabase(const std::wstring& path);
  HeldDatabase(const HeldDatabase&) = delete;
  HeldDatabase& operator=(const HeldDatabase&) = delete;
  ~HeldDatabase();

private:
  bool IsHeld() const;

  std::wstring mark;
};

#endif
