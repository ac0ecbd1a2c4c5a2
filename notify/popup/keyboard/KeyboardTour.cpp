#include "notify/popup/keyboard/KeyboardTour.h"

TourKey tourKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        return TourKey::Nothing;
    }
    switch (key) {
    case Qt::Key_Tab:
        return modifiers & Qt::ShiftModifier ? TourKey::Previous : TourKey::Next;
    case Qt::Key_Right:
    case Qt::Key_Down:
        return TourKey::Next;
    case Qt::Key_Backtab:
    case Qt::Key_Left:
    case Qt::Key_Up:
        return TourKey::Previous;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        return TourKey::Press;
    case Qt::Key_PageUp:
        return TourKey::PageUp;
    case Qt::Key_PageDown:
        return TourKey::PageDown;
    case Qt::Key_Escape:
        return TourKey::GiveBack;
    default:
        return TourKey::Nothing;
    }
}

int stopAfter(int stop, TourKey key, int stops)
{
    switch (key) {
    case TourKey::Next:
        return (stop + 1) % stops;
    case TourKey::Previous:
        return (stop + stops - 1) % stops;
    default:
        return stop;
    }
}
