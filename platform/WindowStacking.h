#pragma once

#include <QWidget>

/// Puts a top-level window in front of all others, now, whether or not the program is active. It does not get the
/// keyboard by that. Main thread only.
void bringToFront(QWidget &window);
