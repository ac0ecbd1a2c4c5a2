#include "platform/alert/AlertMessage.h"

#include <algorithm>

std::vector<QStringList> alertColumns(const QString &message)
{
    std::vector<QStringList> lines;
    for (const QString &line : message.split(u'\n')) {
        QStringList cells = line.split(u'\t');
        if (cells.size() > 2) { // Between tabs that follow one another there is no column.
            cells.erase(std::remove(cells.begin() + 1, cells.end() - 1, QString()), cells.end() - 1);
        }
        lines.push_back(cells);
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
