#include "menu/AnchorWindow.h"

namespace
{
constexpr int side = 200; // points
}

AnchorWindow::AnchorWindow(QPoint anchor)
    : QWidget(nullptr, Qt::FramelessWindowHint)
{
    setAttribute(Qt::WA_DontShowOnScreen);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowOpacity(0);
    setGeometry(anchor.x(), anchor.y() - side, side, side);
}
