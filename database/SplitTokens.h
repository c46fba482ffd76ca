#ifndef DATABASE_SPLITTOKENS_H
#define DATABASE_SPLITTOKENS_H

#include "foundation/QulArray.h"
#include "foundation/QulString.h"

// Replaces the content of tokens by the pieces of text between delimiters, each character of which
// is one. There are no empty pieces, however many delimiters follow each other.
void SplitTokens(const QulString& text, QulArray<QulString>& tokens, const wchar_t* delimiters);

#endif
