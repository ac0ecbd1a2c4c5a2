#include "platform/alert/AlertMessage.h"

#include <QRegularExpression>

std::vector<QStringList> alertColumns(const QString &message)
{
    static const QRegularExpression tabs(QStringLiteral("\t+"));
    std::vector<QStringList> lines;
    for (const QString &line : message.split(u'\n')) {
        lines.push_back(line.split(tabs));
    }
    return lines;
}

QString alertWords(const QString &message)
{
    QStringList lines;
    for (QStringList &cells : alertColumns(message)) {
        cells.removeAll(QString());
        lines.append(cells.join(u' '));
    }
    return lines.join(u'\n');
}

QString withoutFormatDirectives(const QString &format)
{
    QString text = format;
    return text.replace(QLatin1String("%%"), QLatin1String("%"));
}
