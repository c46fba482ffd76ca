#include "launcher/ProductModules.h"

[[gnu::init_priority(NameTableInitPriority)]] const QulString ProductModules[ProductModuleCount] = {
    L"Kestrelforge"};
