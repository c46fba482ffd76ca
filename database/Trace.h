#ifndef DATABASE_TRACE_H
#define DATABASE_TRACE_H

using TraceFunction = void (*)(const wchar_t* text);

// While it isn't null, it gets every trace and the debug output gets none. Nothing sets it yet; it
// is there for a program that hosts the update and wants to show them.
extern TraceFunction TraceCallback;

// Kept beside the callback for such a program; only ever cleared here.
extern void* TraceContext;

// The one output of the database update: text, which is not null, goes to TraceCallback, or else to
// the debug output, behind a line feed sent by itself. It may stand in QulWideScratch: a callback
// that composes text takes a copy first.
void ReportTrace(const wchar_t* text);

// wsprintfW cuts what it composes at 1,024 characters. A buffer of this size holds any text of it,
// with a terminator behind the last of them.
constexpr int MessageCharacters = 1024 + 1;

#endif
