#include "platform/linux/FreedMemory.h"

#include <QCoreApplication>
#include <QEvent>

#include <chrono>
#include <malloc.h>

namespace
{
/// Windows follow one another, and the next would have to fetch again what was given back.
constexpr std::chrono::seconds delay(2);
} // namespace

void FreedMemory::giveBackAfterWindows()
{
    new FreedMemory(QCoreApplication::instance());
}

FreedMemory::FreedMemory(QObject *parent)
    : QObject(parent)
{
    m_later.setSingleShot(true);
    m_later.setInterval(delay);
    m_later.callOnTimeout([] { malloc_trim(0); });
    parent->installEventFilter(this);
}

bool FreedMemory::eventFilter(QObject *watched, QEvent *event)
{
    if (watched->isWindowType() && event->type() == QEvent::Hide) {
        m_later.start();
    }
    return false;
}
