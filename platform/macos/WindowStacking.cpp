#include "platform/WindowStacking.h"

void bringToFront(QWidget &window)
{
    window.raise();
}
