#include "tests/support/LogLines.h"

#include <QByteArrayView>
#include <QLoggingCategory>

#include <mutex>
#include <utility>

namespace
{

std::mutex mutex;
std::vector<std::string> lines;
std::vector<std::string> warnings;

void record(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (!QByteArrayView(context.category).startsWith("kiv.")) {
        return; // Qt's own.
    }
    const std::string line = qFormatLogMessage(type, context, message).toStdString();
    const std::lock_guard hold(mutex); // Qt's own threads have something to say as well.
    lines.push_back(line);
    if (type != QtDebugMsg) {
        warnings.push_back(line);
    }
}

} // namespace

LogLines::LogLines()
{
    lines.clear();
    warnings.clear();
    qInstallMessageHandler(record);
    QLoggingCategory::setFilterRules(QStringLiteral("kiv.*=true"));
}

LogLines::~LogLines()
{
    QLoggingCategory::setFilterRules(QString());
    qInstallMessageHandler(nullptr);
}

std::vector<std::string> LogLines::take()
{
    const std::lock_guard hold(mutex);
    return std::exchange(lines, {});
}

std::vector<std::string> LogLines::takeWarnings()
{
    const std::lock_guard hold(mutex);
    return std::exchange(warnings, {});
}
