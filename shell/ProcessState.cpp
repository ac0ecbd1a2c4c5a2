#include "shell/ProcessState.h"

std::unique_ptr<KIVMenuObj> __menu;
ProcessSerialNumber __mypsn{};
ProcessSerialNumber __owpsn{};
