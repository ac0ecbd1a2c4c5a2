// kivfetch, which trusts a server of the test's, has a proxy that it is not to use, and may be given less time.

#include "fetch/FeedFetch.h"

#include <QCoreApplication>
#include <QNetworkProxy>
#include <QSslConfiguration>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (const QString certificate = qEnvironmentVariable("KIV_TRUSTED_CERTIFICATE"); !certificate.isEmpty()) {
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.addCaCertificates(certificate);
        QSslConfiguration::setDefaultConfiguration(configuration);
    }
    if (const int port = qEnvironmentVariableIntValue("KIV_APPLICATION_PROXY"); port != 0) {
        QNetworkProxy::setApplicationProxy(
            {QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), static_cast<quint16>(port)});
    }
    if (const int maxDuration = qEnvironmentVariableIntValue("KIV_MAX_DURATION"); maxDuration != 0) {
        fetchFeed(QCoreApplication::arguments(), std::chrono::milliseconds(maxDuration));
    }
    fetchFeed(QCoreApplication::arguments());
}
