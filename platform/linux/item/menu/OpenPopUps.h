#pragma once

#include <QApplication>
#include <QWidget>

/// Closes the menus that are open, from the innermost one outwards, and stops at one that does not let itself be
/// closed.
inline void closePopUps()
{
    while (QWidget *popUp = QApplication::activePopupWidget()) {
        popUp->close();
        if (QApplication::activePopupWidget() == popUp) {
            return;
        }
    }
}
