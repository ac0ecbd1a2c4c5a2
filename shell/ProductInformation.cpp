#include "shell/ProductInformation.h"

#include "platform/data/StringValues.h"
#include "shell/ProductTexts.h"

namespace
{
/// The value of a key of the dictionary, a number as its text; a null string when there is none.
QString valueOf(const std::optional<QVariantMap> &dictionary, const char *key)
{
    return dictionary ? StringValues::stringValue(dictionary->value(QLatin1String(key))) : QString();
}

QString valueOr(const std::optional<QVariantMap> &dictionary, const char *key, const char16_t *fallback)
{
    const QString value = valueOf(dictionary, key);
    return value.isNull() ? QString::fromUtf16(fallback) : value;
}
} // namespace

ProductInformation productInformation(const std::optional<QVariantMap> &infoDictionary)
{
    const QString product = QString::fromUtf16(ProductTexts::product);
    QString version = valueOr(infoDictionary, "KIVBuildVersion", ProductTexts::version);
    if (const QString date = valueOf(infoDictionary, "KIVBuildDate"); !date.isNull()) {
        version += u'/' + date;
    }
    const QString copyright = valueOr(infoDictionary, "KIVProductCopyright", ProductTexts::copyright);
    const QString home = valueOr(infoDictionary, "KIVProductHome", ProductTexts::homePage);
    const QString label = valueOf(infoDictionary, "KIVPrivateLabel");

    QString body = QStringLiteral("\nProduct:\t\t") + product + QStringLiteral("\nVersion:\t\t") + version +
                   QStringLiteral("\nCopyright:\t\t") + copyright + QStringLiteral("\nHome:\t\t") + home;
    if (!label.isEmpty()) {
        body += QStringLiteral("\nLabel:\t\t") + label;
    }
    return {body + QStringLiteral("\n\n"), home};
}

QString supportPage(const std::optional<QVariantMap> &infoDictionary)
{
    return valueOr(infoDictionary, "KIVProductSupport", ProductTexts::supportPage);
}
