#include "platform/data/DocumentType.h"

namespace
{

struct Section {
    QStringView open;
    QStringView close;
};

/// Within these, what looks like a document type is none.
constexpr Section sections[] = {{u"<!--", u"-->"}, {u"<?", u"?>"}, {u"<![CDATA[", u"]]>"}};

/// Whether it is neither an element nor its end, as nearly all are: it need not be compared with anything then.
bool isDeclarationOrSection(QStringView markup)
{
    return markup.size() > 1 && (markup[1] == u'!' || markup[1] == u'?');
}

/// The length of the document type that the text begins with; 0 when it has an internal subset or no end.
qsizetype lengthWithoutSubset(QStringView type)
{
    QChar quote;
    for (qsizetype i = 1; i < type.size(); ++i) {
        const QChar c = type[i];
        if (!quote.isNull()) {
            quote = c == quote ? QChar() : quote;
        } else if (c == u'"' || c == u'\'') {
            quote = c;
        } else if (c == u'>') {
            return i + 1;
        } else if (c == u'[' || c == u'<') {
            return 0;
        }
    }
    return 0;
}

} // namespace

qsizetype lengthBeforeDocumentType(QStringView xml)
{
    qsizetype start = xml.indexOf(u'<');
    while (start >= 0) {
        const QStringView rest = xml.sliced(start);
        if (!isDeclarationOrSection(rest)) {
            start = xml.indexOf(u'<', start + 1);
            continue;
        }
        if (rest.startsWith(u"<!DOCTYPE")) {
            return start;
        }
        qsizetype next = start + 1;
        for (const Section &section : sections) {
            if (rest.startsWith(section.open)) {
                const qsizetype end = rest.indexOf(section.close, section.open.size());
                // The parser reports one that is not closed, and goes no further.
                next = end < 0 ? xml.size() : start + end + section.close.size();
            }
        }
        start = xml.indexOf(u'<', next);
    }
    return xml.size();
}

qsizetype lengthBeforeDeclaringDocumentType(QStringView xml)
{
    const qsizetype before = lengthBeforeDocumentType(xml);
    const qsizetype length = lengthWithoutSubset(xml.sliced(before));
    const qsizetype behind = before + length;
    return length == 0 ? before : behind + lengthBeforeDocumentType(xml.sliced(behind));
}
