#include "tests/session/support/FeedMessages.h"

namespace
{
QByteArray element(const char *name, const QByteArray &text)
{
    return QByteArray("<") + name + ">" + text + "</" + name + ">";
}
} // namespace

QByteArray feedDocument(const QList<FeedMessage> &messages)
{
    QByteArray content;
    for (const FeedMessage &message : messages) {
        content += element("supportMessage", element("messageId", message.id) + element("messageType", message.type) +
                                                 element("messagePriority", message.priority) +
                                                 element("messageRepeat", QByteArray::number(message.repeat)) +
                                                 element("minDate", "any") + element("maxDate", "any") +
                                                 element("minVersion", message.minVersion) +
                                                 element("contentData", message.text.toBase64()));
    }
    return element("supportMessages", content);
}
