#include "platform/data/PropertyListXmlWriter.h"

#include "platform/data/PropertyListValues.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace PropertyListXmlWriter
{

namespace
{

constexpr QByteArrayView head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr QByteArrayView foot = "</plist>\n";

/// Whether XML takes the character as it is, whatever stands beside it.
bool isPlain(QChar c)
{
    return c == u'\t' || c == u'\n' ||
           (c >= u' ' && c < QChar(0xFFFE) && !c.isSurrogate() && c != u'&' && c != u'<' && c != u'>');
}

QByteArray escaped(QStringView text)
{
    if (std::ranges::all_of(text, isPlain)) {
        return text.toUtf8(); // As nearly all texts are.
    }
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            out += c;
            out += text[++i];
        } else if (c == u'&') {
            out += u"&amp;";
        } else if (c == u'<') {
            out += u"&lt;";
        } else if (c == u'>') {
            out += u"&gt;";
        } else if (c == u'\r') {
            out += u"&#13;"; // Written as it is, it would be read as a line feed.
        } else if (isPlain(c)) {
            out += c;
        }
    }
    return out.toUtf8();
}

QByteArray real(double number)
{
    if (std::isnan(number)) {
        return "nan";
    }
    if (std::isinf(number)) {
        return number < 0 ? "-infinity" : "+infinity";
    }
    if (number == 0 && std::signbit(number)) {
        return "-0.0"; // Qt drops the sign.
    }
    return QByteArray::number(number, 'g', QLocale::FloatingPointShortest);
}

class Writer final
{
public:
    QByteArray document(const QVariant &value);

private:
    void write(const QVariant &value, int level);
    void writeArray(const QVariantList &list, int level);
    void writeDictionary(const QVariantMap &map, int level);
    void writeData(const QByteArray &data, int level);
    void writeElement(QByteArrayView tag, const QByteArray &content, int level);
    void writeLine(QByteArrayView line, int level);

    QByteArray m_out;
    std::int64_t m_values = 0;
    bool m_tooLarge = false;
};

QByteArray Writer::document(const QVariant &value)
{
    m_out += head;
    write(value, 0);
    if (m_tooLarge || m_out.size() == head.size() || m_out.size() + foot.size() > PropertyListValues::maxBytes) {
        return {};
    }
    m_out += foot;
    return m_out;
}

/// Writes nothing when the value is of no type that a list can hold.
void Writer::write(const QVariant &value, int level)
{
    if (m_tooLarge) {
        return;
    }
    const qsizetype before = m_out.size();
    switch (value.typeId()) {
    case QMetaType::QString:
        if (const QString text = value.toString(); !text.isNull()) {
            writeElement("string", escaped(text), level);
        }
        break;
    case QMetaType::Bool:
        writeLine(value.toBool() ? "<true/>" : "<false/>", level);
        break;
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::SChar:
        writeElement("integer", QByteArray::number(value.toLongLong()), level);
        break;
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
    case QMetaType::UChar:
        writeElement("integer", QByteArray::number(value.toULongLong()), level);
        break;
    case QMetaType::Double:
    case QMetaType::Float:
        writeElement("real", real(value.toDouble()), level);
        break;
    case QMetaType::QDateTime:
        if (const QDateTime date = value.toDateTime(); date.isValid()) {
            writeElement("date", PropertyListValues::dateToText(date), level);
        }
        break;
    case QMetaType::QByteArray:
        writeData(value.toByteArray(), level);
        break;
    case QMetaType::QVariantList:
        writeArray(value.toList(), level);
        break;
    case QMetaType::QVariantMap:
        writeDictionary(value.toMap(), level);
        break;
    default:
        break;
    }
    m_values += m_out.size() > before ? 1 : 0;
    m_tooLarge = m_tooLarge || m_out.size() > PropertyListValues::maxBytes || m_values > PropertyListValues::maxValues;
}

void Writer::writeArray(const QVariantList &list, int level)
{
    m_tooLarge = m_tooLarge || level == PropertyListValues::maxLevels;
    const qsizetype before = m_out.size();
    writeLine("<array>", level);
    const qsizetype start = m_out.size();
    for (const QVariant &value : list) {
        write(value, level + 1);
    }
    if (m_out.size() == start) {
        m_out.truncate(before);
        writeLine("<array/>", level);
    } else {
        writeLine("</array>", level);
    }
}

void Writer::writeDictionary(const QVariantMap &map, int level)
{
    m_tooLarge = m_tooLarge || level == PropertyListValues::maxLevels;
    const qsizetype before = m_out.size();
    writeLine("<dict>", level);
    const qsizetype start = m_out.size();
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const qsizetype beforeKey = m_out.size();
        writeElement("key", escaped(it.key()), level + 1);
        const qsizetype afterKey = m_out.size();
        write(it.value(), level + 1);
        if (m_out.size() == afterKey) {
            m_out.truncate(beforeKey);
        }
    }
    if (m_out.size() == start) {
        m_out.truncate(before);
        writeLine("<dict/>", level);
    } else {
        writeLine("</dict>", level);
    }
}

void Writer::writeData(const QByteArray &data, int level)
{
    constexpr qsizetype lineLength = 76;
    const QByteArray encoded = data.toBase64();
    writeLine("<data>", level);
    for (qsizetype i = 0; i < encoded.size(); i += lineLength) {
        writeLine(QByteArrayView(encoded).sliced(i, std::min(lineLength, encoded.size() - i)), level);
    }
    writeLine("</data>", level);
}

void Writer::writeElement(QByteArrayView tag, const QByteArray &content, int level)
{
    m_out.append(level, '\t');
    for (const QByteArrayView part : {QByteArrayView("<"), tag, QByteArrayView(">"), QByteArrayView(content),
                                      QByteArrayView("</"), tag, QByteArrayView(">\n")}) {
        m_out += part;
    }
}

void Writer::writeLine(QByteArrayView line, int level)
{
    m_out.append(level, '\t');
    m_out += line;
    m_out += '\n';
}

} // namespace

QByteArray write(const QVariant &value)
{
    return Writer().document(value);
}

} // namespace PropertyListXmlWriter
