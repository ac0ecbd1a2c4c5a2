#include "platform/linux/workarounds/memory/FreedMemory.h"

#include <QEvent>
#include <QGuiApplication>

#include <X11/Xlib.h>
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
    m_later.callOnTimeout(&FreedMemory::giveBack);
    parent->installEventFilter(this);
}

bool FreedMemory::eventFilter(QObject *watched, QEvent *event)
{
    if (watched->isWindowType() && event->type() == QEvent::Hide && !m_later.isActive()) {
        m_later.start();
    }
    return false;
}

void FreedMemory::giveBack()
{
    // A reply to Xlib itself.
    if (const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) {
        XSync(x11->display(), False);
    }
    malloc_trim(0);
}
