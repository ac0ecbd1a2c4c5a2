#include "menu/ServiceTool.h"

// Alone in its file, so that a program that is linked with another definition gets a tool of its own.
const char *const serviceTool = KIV_SERVICE_TOOL;
