#pragma once

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

/// The file in a home folder that keeps the agent's messages.
class MessageCache final
{
public:
    /// The entries as far as the tests look at them: "3x2" is message 3 with repeat code 2.
    using Entries = std::vector<std::string>;

    explicit MessageCache(const QString &home);

    [[nodiscard]] QString path() const { return m_path; }
    [[nodiscard]] QString folder() const;
    /// Empty when there is no such file.
    [[nodiscard]] QByteArray content() const;
    [[nodiscard]] Entries entries() const;
    /// The texts of its messages.
    [[nodiscard]] std::vector<std::string> texts() const;
    /// Waits until these are its entries.
    [[nodiscard]] bool becomes(const Entries &entries) const;

private:
    QString m_path;
};
