#include "platform/linux/screen/ScreenChanges.h"

#include <QGuiApplication>
#include <QScreen>

ScreenChanges::ScreenChanges()
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *const screen : screens) {
        watch(screen);
    }
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](const QScreen *screen) {
        watch(screen);
        Q_EMIT changed();
    });
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &ScreenChanges::changed);
}

void ScreenChanges::watch(const QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, this, &ScreenChanges::changed);
    // With these Qt may take over another scale without a word of the size.
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, &ScreenChanges::changed);
}
