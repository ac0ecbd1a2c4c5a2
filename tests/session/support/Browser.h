#pragma once

#include <QByteArrayList>
#include <QProcessEnvironment>
#include <QTemporaryDir>

/// The default program for addresses of the test's own desktop. It shows nothing and writes down what it is to open.
class Browser final
{
public:
    Browser();

    /// Makes it the default program of whoever gets this environment.
    void addTo(QProcessEnvironment &environment) const;
    /// What it was to open, in order.
    [[nodiscard]] QByteArrayList opened() const;

private:
    QTemporaryDir m_directory;
};
