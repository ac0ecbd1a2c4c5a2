#include "notify/feed/ContentData.h"

#include "notify/feed/Base64.h"
#include "platform/data/StringValues.h"

#include <QByteArray>

#include <cstring>

QString messageTextFromContent(const QString &base64)
{
    const QByteArray characters = base64.toUtf8();
    const auto length = static_cast<int>(characters.size());
    int capacity = static_cast<int>(characters.size() * 3 / 4);
    QByteArray decoded(capacity + 1, '\0');
    // All of it fits: four characters never give more than three bytes.
    xtl::base64_impl<int>::decode(characters.constData(), length, reinterpret_cast<unsigned char *>(decoded.data()),
                                  &capacity);
    QString text = StringValues::fromUtf8(QByteArrayView(decoded.constData(), std::strlen(decoded.constData())));

    if (text.startsWith(u'<') && !text.contains(QLatin1String("<body>"))) {
        text.replace(u'\n', QLatin1String("<br/>"));
        return QLatin1String("<body><font face=\"Helvetica\" size=\"+1\">") + text + QLatin1String("</font></body>");
    }
    return text;
}
