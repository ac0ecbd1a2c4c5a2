#pragma once

#include <QObject>

class QScreen;

/// Tells that a screen has come, or has another place, size or scale, or that another is the main one. Main thread
/// only.
class ScreenChanges final : public QObject
{
    Q_OBJECT

public:
    ScreenChanges();

Q_SIGNALS:
    void changed();

private:
    void watch(const QScreen *screen);
};
