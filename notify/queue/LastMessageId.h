#pragma once

#include "notify/rules/PreferencesFile.h"

#include <QTimer>

class KivNotificationProperties;
class QString;

/// The highest id among the messages that have come, with which the feed is asked for newer ones. It is kept with the
/// settings, and stored behind the messages: the feed is not to be told of one that is in no file yet. Main thread
/// only, as an event loop runs there.
///
/// Nobody who has the settings locked is waited for: the id is tried again a few times, and then written all the same.
/// What cannot be written is tried again whenever it is to be stored.
class LastMessageId final
{
public:
    /// How often it is tried, and how much later each time, before nobody is minded any more: half a second.
    static constexpr int maxTries = 10;
    static constexpr std::chrono::milliseconds pause{50};

    /// `properties` hold it, and must outlive this object.
    explicit LastMessageId(KivNotificationProperties &properties);

    /// A message of that id has come. Higher is what has the higher number, and what is none counts as 0.
    void raiseTo(const QString &id);

    /// Stores it, if it has been raised since it was stored last.
    void store();

    /// At the agent's end: stores at last what waits for somebody who has the settings locked.
    void finish();

    /// Loads the settings again, of which it keeps its place. An id that is not stored yet stays, unless the file has a
    /// higher one. False when there is no file of settings.
    [[nodiscard]] bool reloadSettings();

private:
    void tryToStore(PreferencesFile::Manners manners);
    void tryAgain();

    KivNotificationProperties &m_properties;
    bool m_isDue = false; ///< Raised, and not stored yet.
    int m_tries = 0;      ///< Since it was to be stored.
    QTimer m_nextTry;
};
