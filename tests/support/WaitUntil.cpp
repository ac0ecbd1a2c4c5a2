#include "tests/support/WaitUntil.h"

#include <QEventLoop>
#include <QTimer>

bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds timeout)
{
    if (condition()) {
        return true;
    }
    QEventLoop loop;
    bool held = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        held = condition();
        if (held) {
            loop.quit();
        }
    });
    look.start(std::chrono::milliseconds(5));
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    loop.exec();
    return held || condition();
}
