#pragma once

#include <QString>

#include <stdexcept>

/// A value was to be set under a name that is no property of the object.
class UndefinedKeyException final : public std::runtime_error
{
public:
    explicit UndefinedKeyException(const QString &key)
        : std::runtime_error("undefined key: " + key.toStdString())
    {
    }
};
