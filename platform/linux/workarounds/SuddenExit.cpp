#include "platform/linux/workarounds/SuddenExit.h"

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
