#pragma once

#include <QElapsedTimer>
#include <QMenu>
#include <QObject>
#include <QPoint>

/// As long as it lives, keeps the second press of a double click from closing the menu that the first one is about to
/// open: many double-click whatever they want opened. Main thread only.
class DoubleClickGuard final : public QObject
{
    Q_OBJECT

public:
    /// `press` is where the first one was, in Qt's global coordinates.
    DoubleClickGuard(QMenu &menu, QPoint press);

    /// Whether a press that comes now may be the second of the two.
    [[nodiscard]] bool isOpen() const;

private:
    bool eventFilter(QObject *watched, QEvent *event) override;

    QMenu &m_menu;
    const QPoint m_press;
    QElapsedTimer m_age;
};
