// Shows a pop-up on the display at hand, to be looked at: show_pop_up [update|warning|news|notice|instant] [dark]
#include "notify/popup/KivNotificationWindow.h"
#include "notify/popup/PopUpPlacement.h"
#include "platform/MainScreen.h"

#include <QApplication>
#include <QPalette>

#include <cstdlib>
#include <map>

namespace
{

struct Sample {
    std::int32_t type;
    std::int32_t priority;
    QString text;
};

const std::map<QString, Sample> samples = {
    {QStringLiteral("update"),
     {0, 2,
      QStringLiteral("<p><b>Kivune 4.2</b> is ready to install.</p>"
                     "<ul><li>Sessions start in half the time</li><li>Screens of any size, at any scale</li></ul>"
                     "<p>Read <a href=\"https://www.example.com/news/4.2\">what is new</a> first.</p>")}},
    {QStringLiteral("warning"),
     {3, 2,
      QStringLiteral("The certificate of this server ends in three days. After that, viewers will warn their users "
                     "before they connect. How to renew it: https://www.example.com/help/certificates")}},
    {QStringLiteral("news"),
     {2, 1, QStringLiteral("The handbook has a new chapter about several screens.\nQuestions? help@example.com")}},
    {QStringLiteral("notice"), {1, 0, QStringLiteral("Sound is now passed on to the viewer.")}},
    {QStringLiteral("instant"),
     {1, kPriorityInstant, QStringLiteral("The administrator will restart this computer at 18:00.")}},
};

QPalette darkPalette()
{
    QPalette palette(QColor(0x2d, 0x2f, 0x33));
    palette.setColor(QPalette::Base, QColor(0x23, 0x25, 0x28));
    return palette;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication::setDesktopSettingsAware(false);
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.contains(QStringLiteral("dark"))) {
        QApplication::setPalette(darkPalette());
    }
    const auto sample = samples.find(arguments.value(1, QStringLiteral("update")));
    const std::optional<NSRect> screen = MainScreen::frame();
    if (sample == samples.end() || !screen) {
        return EXIT_FAILURE;
    }
    const auto record = std::make_shared<KivNotification>();
    record->setMessageType(sample->second.type);
    record->setMessagePriority(sample->second.priority);
    record->setMessageText(sample->second.text);
    auto *window = new KivNotificationWindow(record);
    QObject::connect(window, &QObject::destroyed, &application, &QApplication::quit);
    window->showAtScreenPoint(popUpOrigin(screen->size, window->frame().size, window->topReach()), -1);
    return QApplication::exec();
}
