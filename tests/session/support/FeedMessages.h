#pragma once

#include <QByteArray>
#include <QList>

/// A message as the makers' feed has it, to be seen by everybody, on every day, when nothing else is said.
struct FeedMessage {
    QByteArray id;
    const char *type = "notice";
    const char *priority = "medium";
    int repeat = 1;
    QByteArray text = "A plain notice.";
    const char *minVersion = "any";
};

/// The feed's document with these messages.
[[nodiscard]] QByteArray feedDocument(const QList<FeedMessage> &messages);
