// The least that a status item can cost with this toolkit: an icon in the tray and a menu of three entries. What the
// agent costs is measured against it.

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char **argv)
{
    QApplication::setDesktopSettingsAware(false);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    QPixmap picture(22, 22);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.fillRect(4, 4, 14, 14, Qt::white);
    painter.end();

    QMenu menu;
    menu.addAction(QStringLiteral("One"));
    menu.addAction(QStringLiteral("Two"));
    menu.addAction(QStringLiteral("Quit"), &application, &QApplication::quit);

    QSystemTrayIcon icon(QIcon(picture), &application);
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
