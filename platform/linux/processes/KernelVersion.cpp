#include "platform/linux/processes/KernelVersion.h"

namespace
{

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace

QString kernelVersion(QStringView release)
{
    qsizetype length = 0;
    for (qsizetype i = 0; i < release.size(); ++i) {
        const bool isSeparator = release[i] == u'.' && i > 0 && isDigit(release[i - 1]);
        if (!isDigit(release[i]) && !isSeparator) {
            break;
        }
        length = isSeparator ? length : i + 1;
    }
    return length > 0 ? release.first(length).toString() : QString();
}
