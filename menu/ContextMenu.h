#pragma once

#include "platform/StatusBar.h"

#include <QMenu>
#include <QMouseEvent>
#include <QWidget>

/// Opens `menu` as the context menu of `view`, pressed by `event`: with its top-left corner at the event's global
/// position, or the corner beside the status bar where that is at the bottom or right edge. Returns when the menu has
/// closed.
/// With a null `view` the menu opens all the same.
void popUpContextMenu(QMenu &menu, QMouseEvent &event, QWidget *view, StatusBar::Edge edge);
