#ifndef DOUBLES_CHARACTERCLASS_H
#define DOUBLES_CHARACTERCLASS_H

// Classes of characters as msvcrt knows them in its "C" locale: letters fold case in ASCII alone,
// but digits and blanks are those of Unicode.

bool IsDigitCharacter(unsigned int c);
bool IsSpaceCharacter(unsigned int c);

// What a digit counts for _wtoi, which knows fewer of them; -1 if it is none.
int DigitValue(unsigned int c);

wchar_t LowerCharacter(wchar_t c);

#endif
