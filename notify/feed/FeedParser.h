#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class KivNotification;

/// Makes records of the feed's XML: each "supportMessage" element is one, each of its children a field by the child's
/// name. All text but "contentData" is lowercased first; white space counts. Attributes, and the names and text of the
/// elements around a message, mean nothing.
///
/// notify/feed/FeedTokens.h says which documents are read, and how much of them. Of a field that is no text to be shown
/// counts what it has in 64 Ki UTF-16 units.
///
/// What a malformed document leaves open stays open when the next one is begun. Main thread only.
class FeedParser final
{
public:
    /// Takes each record when its element ends. May throw; the parse then ends with that exception.
    using Handover = std::function<void(const std::shared_ptr<KivNotification> &)>;

    explicit FeedParser(Handover handover);
    ~FeedParser();

    enum class Outcome {
        EndOfDocument,
        Malformed ///< Ended there. The records before that spot were handed over.
    };

    /// Throws UndefinedKeyException at an element within a message that names no property of KivNotification; the
    /// records before it were handed over.
    [[nodiscard]] Outcome parse(const QByteArray &document);

    /// The same, for who has other things to do meanwhile: begin, and then read until there is an outcome, or an
    /// exception. Nothing when the time is up before that.
    void begin(const QByteArray &document);
    /// A document, taken apart and ready to be read: for a long one, in another thread, where all this may be done.
    struct Reading;
    [[nodiscard]] static std::shared_ptr<Reading> open(const QByteArray &document);
    void begin(std::shared_ptr<Reading> reading);
    [[nodiscard]] std::optional<Outcome> read(const QDeadlineTimer &share);

    /// The record being filled; null when none is.
    [[nodiscard]] const std::shared_ptr<KivNotification> &notification() const noexcept { return m_notification; }

private:
    [[nodiscard]] std::optional<Outcome> readNext(Reading &reading);
    void didStartElement(QStringView name);
    void foundCharacters(QStringView characters);
    void didEndElement(QStringView name);
    void setField(QStringView element);

    Handover m_handover;
    std::shared_ptr<Reading> m_reading; ///< Of the document that is being read; null when none is.
    QString m_currentChars;
    std::shared_ptr<KivNotification> m_notification;
    bool m_readingChars = false;
};
