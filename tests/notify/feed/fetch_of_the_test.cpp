// kivfetch, which trusts a server of the test's, and may be given less time.

#include "fetch/FeedFetch.h"

#include <QCoreApplication>
#include <QSslConfiguration>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (const QString certificate = qEnvironmentVariable("KIV_TRUSTED_CERTIFICATE"); !certificate.isEmpty()) {
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.addCaCertificates(certificate);
        QSslConfiguration::setDefaultConfiguration(configuration);
    }
    if (const int maxDuration = qEnvironmentVariableIntValue("KIV_MAX_DURATION"); maxDuration != 0) {
        fetchFeed(QCoreApplication::arguments(), std::chrono::milliseconds(maxDuration));
    }
    fetchFeed(QCoreApplication::arguments());
}
