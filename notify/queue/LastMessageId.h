#pragma once

class KivNotificationProperties;
class QString;

/// The highest id among the messages that have come, with which the feed is asked for newer ones. It is kept with the
/// settings, and stored behind the messages: the feed is not to be told of one that is in no file yet. Main thread
/// only.
class LastMessageId final
{
public:
    /// `properties` hold it, and must outlive this object.
    explicit LastMessageId(KivNotificationProperties &properties);

    /// A message of that id has come. Higher is what has the higher number, and what is none counts as 0.
    void raiseTo(const QString &id);

    /// Stores it, if it has been raised since it was stored last.
    void store();

    /// Loads the settings again, of which it keeps its place. False when there is no file of settings.
    [[nodiscard]] bool reloadSettings();

private:
    KivNotificationProperties &m_properties;
    bool m_isDue = false; ///< Raised, and not stored yet.
};
