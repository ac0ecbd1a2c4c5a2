#include "notify/queue/LastMessageId.h"

#include "notify/rules/KivNotificationProperties.h"
#include "platform/data/StringValues.h"

using Manners = PreferencesFile::Manners;

namespace
{

bool isHigher(const QString &id, const QString &other)
{
    return StringValues::longLongValue(id) > StringValues::longLongValue(other);
}

} // namespace

LastMessageId::LastMessageId(KivNotificationProperties &properties)
    : m_properties(properties)
{
    m_nextTry.setSingleShot(true);
    m_nextTry.callOnTimeout(&m_nextTry, [this] { tryAgain(); });
}

void LastMessageId::raiseTo(const QString &id)
{
    if (isHigher(id, m_properties.lastMesID())) {
        m_properties.setLastMesID(id);
        m_isDue = true;
        m_nextTry.stop(); // Its message is in no file yet.
    }
}

void LastMessageId::store()
{
    if (m_isDue && !m_nextTry.isActive()) {
        m_tries = 0;
        tryToStore(Manners::Yield);
    }
}

void LastMessageId::finish()
{
    if (m_nextTry.isActive()) {
        tryToStore(Manners::Insist);
    }
}

bool LastMessageId::reloadSettings()
{
    const QString received = m_properties.lastMesID();
    const bool hadFile = m_properties.hasPreferencesFile();
    if (!m_properties.loadPrefList()) {
        return false;
    }
    if (m_isDue) {
        if (isHigher(received, m_properties.lastMesID())) {
            m_properties.setLastMesID(received); // The file does not have it yet.
        }
    } else if (!hadFile && m_properties.lastMesID() == PreferencesFile::noMessageYet) {
        // Somebody has made a file, who cannot know what has been received: or all of it would come once more.
        m_properties.setLastMesID(received);
        m_isDue = true;
        store();
    }
    return true;
}

void LastMessageId::tryToStore(Manners manners)
{
    const PreferencesFile::Storing storing = m_properties.saveLastMessID(m_properties.lastMesID(), manners);
    m_isDue = storing != PreferencesFile::Storing::Done;
    if (storing == PreferencesFile::Storing::Busy) {
        m_nextTry.start(pause);
    } else {
        m_nextTry.stop();
    }
}

void LastMessageId::tryAgain()
{
    tryToStore(++m_tries < maxTries ? Manners::Yield : Manners::Insist);
}
