#pragma once

#include <QUrl>

/// Whether a click on a link of a message may open it: an address of the web or of a file server that names its host,
/// or one to write mail to. Others could name programs or files of the user's, or lead nowhere. Reentrant.
[[nodiscard]] bool isOpenableLink(const QUrl &link);
