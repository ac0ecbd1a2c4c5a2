#include "fuzz/Check.h"
#include "notify/text/CleanHtml.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString html = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    static const QStringList names = {QStringLiteral("a"),  QStringLiteral("br"),   QStringLiteral("div"),
                                      QStringLiteral("hr"), QStringLiteral("li"),   QStringLiteral("ol"),
                                      QStringLiteral("p"),  QStringLiteral("ul"),   QStringLiteral("table"),
                                      QStringLiteral("tr"), QStringLiteral("span"), QStringLiteral("td"),
                                      QStringLiteral("all")};
    for (const HtmlTables tables : {HtmlTables::Kept, HtmlTables::Dissolved}) {
        const QString clean = cleanHtml(html, {Qt::black, Qt::white}, tables);
        // Whatever came in, what comes out is as tidy as XML, and has nothing in it but what it may have.
        QXmlStreamReader reader(QStringLiteral("<all>") + clean + QStringLiteral("</all>"));
        int elements = 0;
        while (!reader.atEnd()) {
            if (reader.readNext() == QXmlStreamReader::StartElement) {
                ++elements;
                check(names.contains(reader.name().toString()));
                for (const QXmlStreamAttribute &attribute : reader.attributes()) {
                    check(attribute.qualifiedName() != u"src" && !attribute.qualifiedName().startsWith(u"on"));
                    // A family of fonts may have the three letters in its name.
                    check(attribute.qualifiedName() != u"style" || !attribute.value().contains(u"url("));
                }
            }
        }
        check(!reader.hasError());
        check(elements <= 2500 + 2200);
    }
    return 0;
}
