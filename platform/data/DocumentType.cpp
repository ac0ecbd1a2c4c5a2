#include "platform/data/DocumentType.h"

namespace
{

struct Section {
    QStringView open;
    QStringView close;
};

/// Within these, what looks like a document type is none.
constexpr Section sections[] = {{u"<!--", u"-->"}, {u"<?", u"?>"}, {u"<![CDATA[", u"]]>"}};

} // namespace

qsizetype lengthBeforeDocumentType(QStringView xml)
{
    qsizetype start = xml.indexOf(u'<');
    while (start >= 0) {
        const QStringView rest = xml.sliced(start);
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
