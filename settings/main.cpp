#include "notify/rules/SettingsAnnouncement.h"
#include "platform/DistributedNotifications.h"
#include "platform/LogOutput.h"
#include "platform/screen/DesktopLook.h"
#include "settings/ProductTexts.h"
#include "settings/SettingsWindow.h"

#include <QApplication>
#include <QDir>

int main(int argc, char **argv)
{
    LogOutput::useStandardError();
    DesktopLook::prepareScale();
    const QApplication application(argc, argv);
    QApplication::setDesktopFileName(ProductTexts::desktopEntry);

    DesktopLook::follow(DesktopLook::Part::Colours);
    SettingsWindow window(PreferencesFile::inHome(QDir::homePath()),
                          [] { return DistributedNotifications::post(settingsChanged); });
    const auto observer = DistributedNotifications::addObserver(settingsChanged, [&window] { window.reload(); });
    window.show();
    return QApplication::exec();
}
