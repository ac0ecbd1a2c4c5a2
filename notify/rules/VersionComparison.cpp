#include "notify/rules/VersionComparison.h"

#include "platform/data/StringValues.h"

#include <stdexcept>

namespace
{

QString secondComponent(const QString &version)
{
    if (!version.contains(u'.')) {
        throw std::out_of_range("no second component in version \"" + version.toStdString() + '"');
    }
    return version.section(u'.', 1, 1);
}

int sign(int number)
{
    return (number > 0) - (number < 0);
}

} // namespace

int compareToVersion(const QString &a, const QString &b)
{
    if (a.isNull() || b.isNull()) {
        return static_cast<int>(b.isNull()) - static_cast<int>(a.isNull());
    }
    // The second component alone decides, and by its text: whoever writes the feed's bounds relies on it.
    const QString left = secondComponent(a);
    const QString right = secondComponent(b);
    if (StringValues::intValue(left) == StringValues::intValue(right)) {
        return 0;
    }
    return sign(left.compare(right));
}
