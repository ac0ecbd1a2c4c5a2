#pragma once

#include <QHash>
#include <QObject>
#include <QPoint>
#include <QPointF>

class QEnterEvent;
class QMenu;

/// Has the menus of Qt know that the mouse has moved since they opened.
///
/// Symptom: until the mouse has moved by a few pixels, or seven times, a menu opens no submenu under it and closes on
///   a click, lest the click that opened the menu choose something. Where the mouse was then it takes from the last
///   event of Qt's windows, and the status item is none of them. Before the first menu there was no such event, and
///   what stands for that is as far away as whole numbers go: the distance from there overflows, and the mouse has
///   never moved. And who comes back to the entry that the mouse was on last has not moved it.
/// Of: Qt 6.8.2 for the first, which 6.4 happens to get right and 6.11 reckons with fractions; Qt 6.4 to 6.11 for the
///   second. QMenu. No report found.
/// Left out: a user of the mouse hardly gets into a submenu.
/// Still needed? WorkaroundNeed.MenuMouse tells.
///
/// Main thread only.
class MenuMouse final : public QObject
{
    Q_OBJECT

public:
    /// From now on, as long as the application object lives, which owns this. Called once.
    static void follow();

private:
    using QObject::QObject;

    struct Opening {
        QPoint mouse;          ///< Where it was then.
        bool hasMoved = false; ///< To the knowledge of the menu, which forgets it each time the mouse enters.
    };

    bool eventFilter(QObject *watched, QEvent *event) override;
    void mouseEntered(QMenu &menu, const QEnterEvent &event);
    /// By the menu's coordinates, and by those of the screen.
    void mouseMoved(QMenu &menu, QPointF local, QPointF global);

    QHash<QObject *, Opening> m_openings; ///< Of the menus that are on the screen.
};
