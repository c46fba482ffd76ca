#include "database/DatabaseNames.h"

[[gnu::init_priority(NameTableInitPriority)]] const QulString DatabaseNames[DatabaseCount] = {
    L"QuillRules",
    L"QuillAddition",
    L"QuillDetails",
    L"QuillBase",
    L"QuillProfiles2010",
    L"QuillSettings",
    L"QuillControlStructure",
    L"QuillBitmaps",
    L"QuillProject",
    L"QuillCurrentProject",
    L"QuillCurrentAddIn",
    L"QuillProjectStandards",
    L"QuillDetailsBase",
    L"QuillKernelEnvironment",
    L"QuillJointsCalculation",
    L"NVCMapping2010",
    L"QuillGratings",
};
