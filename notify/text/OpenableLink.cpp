#include "notify/text/OpenableLink.h"

bool isOpenableLink(const QUrl &link)
{
    const QString scheme = link.scheme();
    if (scheme == u"mailto") {
        return !link.path().isEmpty();
    }
    return (scheme == u"http" || scheme == u"https" || scheme == u"ftp") && !link.host().isEmpty();
}
