#include "platform/linux/workarounds/SuddenExit.h"

#include "platform/LogCategories.h"

#include <cstdlib>

namespace
{
bool isSudden = false;

void onExit()
{
    if (isSudden) {
        std::_Exit(EXIT_FAILURE);
    }
}
} // namespace

SuddenExit::SuddenExit()
{
    isSudden = true;
    std::atexit(onExit);
}

SuddenExit::~SuddenExit()
{
    isSudden = false;
}

void SuddenExit::afterLoop(int status)
{
    if (status != EXIT_SUCCESS) {
        qCDebug(agentLog, "the X server has gone");
        std::exit(EXIT_FAILURE);
    }
}
