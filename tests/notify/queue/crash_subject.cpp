// What the crash test kills: a manager to which records come, some of them together, and whose pop-ups close, as fast
// as it can, for ever.
//
//     crash_subject HOME SEED ID LENGTH
//
// The ids of the messages that come are higher than ID, and their texts shorter than LENGTH.
//
// Before each step it writes the state that the queue will have to standard output: a line of the queued messages' ids
// and repeat codes. What the cache file holds at any moment is one of the last three or four of these lines, and, where
// a long one is written in a thread, of all.

#include "notify/popup/KivNotificationWindow.h"
#include "notify/queue/KivNotificationManager.h"
#include "notify/record/DistantFuture.h"
#include "notify/record/KivNotification.h"
#include "notify/rules/KivNotificationProperties.h"
#include "platform/Bundle.h"

#include <QApplication>

#include <cstdio>
#include <random>
#include <string>
#include <unistd.h>

namespace
{

std::string stateOf(const KivNotificationManager &manager)
{
    std::string state;
    for (const std::shared_ptr<KivNotification> &record : manager.notifications().records()) {
        state += record->messageId().toStdString() + 'x' + std::to_string(record->messageRepeat()) + ' ';
    }
    return state + '\n';
}

void say(const std::string &line)
{
    // Unbuffered: what was said before the kill must arrive.
    if (::write(STDOUT_FILENO, line.data(), line.size()) < 0) {
        _exit(1);
    }
}

std::shared_ptr<KivNotification> newRecord(int id, unsigned long length, std::mt19937 &random)
{
    auto record = std::make_shared<KivNotification>();
    record->setMessageId(QString::number(id));
    record->setMessagePriority(static_cast<std::int32_t>(random() % 3));
    record->setMessageRepeat(1 + random() % 2);
    record->setMaxDate(distantFuture());
    record->setContentHeight(60);
    record->setMessageText(QString(static_cast<qsizetype>(random() % length), u'x'));
    return record;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 5) {
        return 2;
    }
    QApplication::setDesktopSettingsAware(false);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    const QString home = QString::fromLocal8Bit(argv[1]);
    std::mt19937 random(static_cast<std::uint32_t>(std::stoul(argv[2])));
    QDateTime now = QDateTime::currentDateTimeUtc();
    const auto clock = [&now] { return now; };
    const UserDatabase nobody{.loginName = [] { return std::nullopt; },
                              .groupMembers = [](const std::string &) { return std::vector<std::string>(); }};
    const Bundle bundle(home);
    KivNotificationProperties properties(bundle, home, QString(), nobody, clock);
    KivNotificationManager manager(properties, home, clock);

    int id = std::stoi(argv[3]);
    const unsigned long length = std::stoul(argv[4]);
    const auto step = [&] {
        now = now.addDays(1);
        const bool isFull = manager.notifications().records().size() > 8;
        if (KivNotificationWindow *popUp = manager.notificationWindow(); popUp && (isFull || random() % 2)) {
            // The file is written from within: the state that it will hold is told first, worked out by hand.
            const auto &record = popUp->notification();
            std::string state;
            const bool isDismissed = random() % 2 == 0;
            const std::uint32_t repeat = isDismissed ? 0 : record->messageRepeat() - 1;
            for (const auto &queued : manager.notifications().records()) {
                const std::uint32_t left = queued == record ? repeat : queued->messageRepeat();
                state += left == 0 ? "" : queued->messageId().toStdString() + 'x' + std::to_string(left) + ' ';
            }
            say(state + '\n');
            isDismissed ? popUp->onDontRemindMeButton() : popUp->onCloseButton();
        } else if (!isFull) {
            std::vector<std::shared_ptr<KivNotification>> records;
            // Where they go is the queue's own business: ask a copy of it.
            NotificationQueue next = manager.notifications();
            for (std::uint32_t count = 1 + random() % 3; count > 0; --count) {
                records.push_back(newRecord(++id, length, random));
                next.add(records.back());
            }
            // One that is shown at once is not saved before that.
            const bool isShown = manager.notifications().records().empty() && !manager.notificationWindow();
            std::string state;
            std::string stateBefore;
            for (const auto &queued : next.records()) {
                const std::string one =
                    queued->messageId().toStdString() + 'x' + std::to_string(queued->messageRepeat()) + ' ';
                state += one;
                stateBefore += isShown && queued == records.front() ? "" : one;
            }
            if (isShown) {
                say(stateBefore + '\n');
            }
            say(state + '\n');
            const NotificationSink::Delivery delivery(manager);
            for (const auto &record : records) {
                manager.enqueueNotification(record);
            }
        } else {
            manager.forceNotification();
        }
    };
    QTimer timer;
    timer.callOnTimeout(step);
    manager.whenImported([&] {
        say("started " + stateOf(manager));
        timer.start(0);
    });
    return QApplication::exec();
}
