#include "notify/queue/LastMessageId.h"

#include "notify/rules/KivNotificationProperties.h"
#include "platform/data/StringValues.h"

#include <utility>

LastMessageId::LastMessageId(KivNotificationProperties &properties)
    : m_properties(properties)
{
}

void LastMessageId::raiseTo(const QString &id)
{
    if (StringValues::longLongValue(m_properties.lastMesID()) < StringValues::longLongValue(id)) {
        m_properties.setLastMesID(id);
        m_isDue = true;
    }
}

void LastMessageId::store()
{
    if (std::exchange(m_isDue, false)) {
        m_properties.saveLastMessID(m_properties.lastMesID());
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
        m_properties.setLastMesID(received); // The file does not have it yet.
    } else if (!hadFile && m_properties.lastMesID() == PreferencesFile::noMessageYet) {
        // Somebody has made a file, who cannot know what has been received: or all of it would come once more.
        m_properties.saveLastMessID(received);
    }
    return true;
}
