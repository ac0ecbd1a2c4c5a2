#include "platform/Compositor.h"

namespace Compositor
{

Question::Question() = default;

Question::~Question() = default;

bool Question::isRunning()
{
    return true;
}

void announceShadow(QWidget &, int)
{
    // The window server has been told by the window's flags.
}

} // namespace Compositor
