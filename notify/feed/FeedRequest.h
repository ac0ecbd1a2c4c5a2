#pragma once

#include <QString>
#include <QUrl>

/// What one request to the feed of support messages states. A null string is sent as "(null)".
struct FeedRequest final {
    QString baseAddress;    ///< The feed's address, without a query.
    QString productCode;    ///< "kivunets"
    QString productVersion; ///< "3.2.1"
    QString buildDate;      ///< As the bundle states it.
    QString systemCode;     ///< "osx"
    QString systemVersion;  ///< "10.6.8"
    QString messageLevel;   ///< "user" or "admin"
    QString licenseType;    ///< "paid"
    QString lastMesID;      ///< The last message received; "0" at first.
};

/// The request's form: the values take the places of the "%@", in the order above, the most messages wanted ("5") last.
extern const QString KivNotificationRequest;

/// The address to fetch. The values go in as they are: a '&', '=', '+', '#' or '%41' in one has its meaning in a URL.
/// What no URL can hold is sent percent-encoded, as UTF-8: blanks, control characters, anything beyond ASCII, a '%'
/// that begins no escape (as "%25"; the other values stay as they are). An escaped letter or digit is sent as that
/// letter or digit, which means the same.
///
/// An invalid URL, for which nothing must be sent, when the base address is no http or https URL with a host.
[[nodiscard]] QUrl feedAddress(const FeedRequest &request);
