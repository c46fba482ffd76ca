#ifndef SQL_STATEMENTTEXT_H
#define SQL_STATEMENTTEXT_H

#include "foundation/QulString.h"

#include <stddef.h>
#include <stdint.h>

// One statement, composed in QulWideScratch piece by piece. The end is known, so the time goes with
// the length, where QulString would copy the whole text for each piece. The text holds until the
// next statement or the next operation on a QulString that composes; one that reaches
// QulStringLimit ends the process.
class StatementText
{
public:
  // Begins anew.
  StatementText();
  StatementText(const StatementText&) = delete;
  StatementText& operator=(const StatementText&) = delete;
  ~StatementText() = default;

  void Append(wchar_t character);
  // The text is terminated and lies outside of QulWideScratch.
  void Append(const wchar_t* text);
  // As [name]; brackets in it are copied as they are.
  void AppendName(const QulString& name);
  // In quotes, with each quote in it doubled: at most size characters, or up to a terminator.
  void AppendQuoted(const wchar_t* text, size_t size);
  void AppendInteger(int32_t number);
  // With six decimals and a point, as the runtime writes it with "%f".
  void AppendDecimals(double number);

  // NUL-terminated. ODBC takes statements by pointers to changeable text, and changes nothing.
  wchar_t* Text() const { return QulWideScratch; }

private:
  const wchar_t* AppendBlocks(const wchar_t* text, const wchar_t* textEnd);
  void AppendFormatted(const wchar_t* format, ...);
  template <typename Number>
  void AppendDigits(Number number);
  // Moves the end behind length characters, which are the caller's to write.
  wchar_t* RoomFor(size_t length);

  wchar_t* end;         // place of the terminator
  wchar_t* const last;  // its last possible place
};

#endif
