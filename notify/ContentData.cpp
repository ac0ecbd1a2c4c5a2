#include "notify/ContentData.h"

#include "notify/Base64.h"

#include <QByteArray>
#include <QStringDecoder>

#include <cstring>

namespace
{

/// Null when `bytes` are not UTF-8.
QString stringFromUtf8(QByteArrayView bytes)
{
    using Flag = QStringConverter::Flag;
    // A byte order mark is text like any other.
    QStringDecoder decoder(QStringConverter::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    QString text = decoder.decode(bytes);
    if (decoder.hasError()) {
        return {};
    }
    return text.isNull() ? QStringLiteral("") : text;
}

} // namespace

QString messageTextFromContent(const QString &base64)
{
    const QByteArray characters = base64.toUtf8();
    const auto length = static_cast<int>(characters.size());
    int capacity = static_cast<int>(characters.size() * 3 / 4);
    QByteArray decoded(capacity + 1, '\0');
    // All of it fits: four characters never give more than three bytes.
    xtl::base64_impl<int>::decode(characters.constData(), length, reinterpret_cast<unsigned char *>(decoded.data()),
                                  &capacity);
    QString text = stringFromUtf8(QByteArrayView(decoded.constData(), std::strlen(decoded.constData())));

    if (text.startsWith(u'<') && !text.contains(QLatin1String("<body>"))) {
        text.replace(u'\n', QLatin1String("<br/>"));
        return QLatin1String("<body><font face=\"Helvetica\" size=\"+1\">") + text + QLatin1String("</font></body>");
    }
    return text;
}
