#ifndef SANDBOX_COMMON_MACHINEPERMISSION_H
#define SANDBOX_COMMON_MACHINEPERMISSION_H

// Who lays out a machine deletes and writes registry keys of AutoCAD and of the add-on. Under Wine
// that happens in a prefix made for it; a real machine has to be offered by its owner, who sets the
// environment variable KESTREL_SYSTEM_TESTS to "1".

// The rule itself. variable is null if the variable isn't set.
bool MayWriteToThisMachine(bool underWine, const wchar_t* variable);

bool IsUnderWine();

// The rule applied to this machine; if it forbids, with a sentence on the standard error output.
bool MachineIsOffered();

#endif
