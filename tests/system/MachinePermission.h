#ifndef TESTS_SYSTEM_MACHINEPERMISSION_H
#define TESTS_SYSTEM_MACHINEPERMISSION_H

// These tests delete and write registry keys of AutoCAD and of the add-on. Under Wine they do so in
// a prefix made for them; a real machine has to be offered by its owner, with the value "1" of the
// environment variable below. variable is null if that isn't set.
extern const wchar_t* const PermissionVariable;

bool MayWriteToThisMachine(bool underWine, const wchar_t* variable);

bool IsUnderWine();

#endif
