#pragma once

#include <QByteArray>

#include <cerrno>
#include <unistd.h>

/// Writes all of it; false, with errno, when that cannot be done. Reentrant.
[[nodiscard]] inline bool writeWhole(int file, const QByteArray &content)
{
    for (qsizetype done = 0; done < content.size();) {
        const ssize_t more = ::write(file, content.constData() + done, static_cast<std::size_t>(content.size() - done));
        if (more < 0 && errno != EINTR) {
            return false;
        }
        done += more > 0 ? more : 0;
    }
    return true;
}
