#pragma once

#include <QLoggingCategory>

/// What the agent says of its doings, on standard error. Warnings are for administrators, and there are none when all
/// is well. Debug lines, one for each decision, come only when Qt's own switch asks for them:
/// QT_LOGGING_RULES='kiv.*=true', which `./kiv run --verbose` sets. docs/troubleshooting.md shows what they look like.
///
/// A text from outside is streamed as a QString, and so comes in quotes and with its control characters escaped.

Q_DECLARE_LOGGING_CATEGORY(agentLog) ///< kiv.agent: start, end, chosen entries, panels, and what nobody caught.
Q_DECLARE_LOGGING_CATEGORY(itemLog)  ///< kiv.item: the status item, its form and its menu.
Q_DECLARE_LOGGING_CATEGORY(linkLog)  ///< kiv.link: the session bus and the events to and from the service.
Q_DECLARE_LOGGING_CATEGORY(feedLog)  ///< kiv.feed: requests to the feed and what came of them.
Q_DECLARE_LOGGING_CATEGORY(queueLog) ///< kiv.queue: which messages are kept, shown and saved, and why others are not.
Q_DECLARE_LOGGING_CATEGORY(popUpLog) ///< kiv.popup: where pop-ups go and what closes them.
