#include "menu/ServiceTool.h"

#include <cstdlib>

// Linked into a copy of the agent, in place of the path that the real one is built with.
const char *const serviceTool = std::getenv("KIV_TEST_SERVICE_TOOL");
