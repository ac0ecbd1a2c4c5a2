#include "platform/LogCategories.h"

Q_LOGGING_CATEGORY(agentLog, "kiv.agent", QtWarningMsg)
Q_LOGGING_CATEGORY(itemLog, "kiv.item", QtWarningMsg)
Q_LOGGING_CATEGORY(linkLog, "kiv.link", QtWarningMsg)
Q_LOGGING_CATEGORY(feedLog, "kiv.feed", QtWarningMsg)
Q_LOGGING_CATEGORY(queueLog, "kiv.queue", QtWarningMsg)
Q_LOGGING_CATEGORY(popUpLog, "kiv.popup", QtWarningMsg)
