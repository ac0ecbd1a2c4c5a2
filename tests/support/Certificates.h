#pragma once

#include <QString>

/// Certificates for a server of the test's, made by openssl and kept in a folder.
class Certificates final
{
public:
    /// For whom and for when a certificate is.
    struct Kind {
        const char *name = "IP:127.0.0.1";
        const char *from = "20200101000000Z";
        const char *until = "20991231000000Z";
    };

    /// An authority, which is its own certificate and key, in PEM files of that folder. A test failure when openssl
    /// makes none.
    explicit Certificates(QString folder);

    /// The authority's certificate.
    [[nodiscard]] QString authority() const;
    /// A certificate that the authority has signed, with its key, as a server needs them. Overwrites the last one.
    [[nodiscard]] QString signedOne(const Kind &kind);
    /// One that nobody but itself has signed. Overwrites the last one.
    [[nodiscard]] QString selfSigned();

private:
    [[nodiscard]] QString path(const char *name) const;

    QString m_folder;
};
