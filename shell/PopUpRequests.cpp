#include "shell/PopUpRequests.h"

#include "notify/popup/KivNotificationWindow.h"
#include "notify/queue/KivNotificationManager.h"

#include <QApplication>

namespace
{

/// Null when there is none that could be answered now.
KivNotificationWindow *answerablePopUp()
{
    return QApplication::activeModalWidget() ? nullptr : KivNotificationManager::sharedInstance().notificationWindow();
}

} // namespace

PopUpRequests::PopUpRequests()
    : m_requests([] { return answerablePopUp() != nullptr; })
{
    QObject::connect(&m_requests, &MessageRequests::requested, &m_requests, [] {
        if (KivNotificationWindow *const popUp = answerablePopUp()) {
            popUp->takeKeyboard();
        }
    });
}
