#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QList>
#include <QVariant>

#include <random>

/// Generated property lists: all types and their edges, nested at random. The same seed gives the same lists.
class PropertyListSamples final
{
public:
    enum class Text {
        Plain,       ///< No control characters but tab and line feed.
        WithReturns, ///< Carriage returns as well: all that XML allows.
        WithControls ///< Every character.
    };

    PropertyListSamples(unsigned seed, Text text)
        : m_random(seed)
        , m_text(text)
    {
    }

    /// A dictionary or array with up to five levels below it.
    [[nodiscard]] QVariant next();

private:
    [[nodiscard]] QVariant value(int levels);
    [[nodiscard]] QString text();
    [[nodiscard]] unsigned below(unsigned bound);

    std::mt19937_64 m_random;
    Text m_text;
};

/// The value in the tagged JSON of plist_peer.py, which keeps the types apart. Only the types that a reader returns are
/// known: any other, such as an int, becomes an empty array, which equals nothing.
[[nodiscard]] QJsonArray tagged(const QVariant &value);

/// A binary list of these objects, of which the first is the top. One-byte references, two-byte offsets.
[[nodiscard]] QByteArray binaryList(const QList<QByteArray> &objects);

/// The trailer of a binary list.
[[nodiscard]] QByteArray binaryTrailer(int offsetSize, int referenceSize, quint64 objects, quint64 top, quint64 table);
