#ifndef LAUNCHER_PRODUCTMODULES_H
#define LAUNCHER_PRODUCTMODULES_H

#include "foundation/QulString.h"

constexpr int ProductModuleCount = 1;

// Names of the modules whose loaders are recorded for the host. Ready before all objects without
// an initialisation priority.
extern const QulString ProductModules[ProductModuleCount];

#endif
