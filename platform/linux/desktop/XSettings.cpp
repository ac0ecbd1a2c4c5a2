#include "platform/linux/desktop/XSettings.h"

#include <QtEndian>

namespace
{

enum class SettingType : std::uint8_t { Number = 0, Text = 1, Colour = 2 };

/// Hands out one field after the other. Behind the end all are zero and empty, and it has failed.
class XSettingsFields final
{
public:
    explicit XSettingsFields(const QByteArray &bytes)
        : m_bytes(bytes)
    {
        const auto order = number<std::uint8_t>();
        m_isBigEndian = order == 1;
        m_hasFailed = m_hasFailed || order > 1;
        skip(3);
    }

    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }

    template <typename Number>
    Number number()
    {
        const QByteArray field = take(sizeof(Number));
        if (m_hasFailed) {
            return 0;
        }
        return m_isBigEndian ? qFromBigEndian<Number>(field.constData()) : qFromLittleEndian<Number>(field.constData());
    }

    /// Of that length, and filled up to the next multiple of four bytes.
    QByteArray text(std::uint32_t length)
    {
        const QByteArray field = take(length);
        skip((4 - length % 4) % 4);
        return field;
    }

    void skip(std::uint32_t length) { take(length); }

private:
    QByteArray take(std::uint32_t length)
    {
        if (m_hasFailed || length > static_cast<std::uint32_t>(m_bytes.size() - m_at)) {
            m_hasFailed = true;
            return {};
        }
        const QByteArray field = m_bytes.mid(m_at, length);
        m_at += length;
        return field;
    }

    const QByteArray m_bytes;
    qsizetype m_at = 0;
    bool m_isBigEndian = false;
    bool m_hasFailed = false;
};

} // namespace

std::optional<std::int32_t> XSettings::number(const char *name) const
{
    const auto found = numbers.constFind(name);
    return found == numbers.cend() ? std::nullopt : std::optional(*found);
}

std::optional<XSettings> readXSettings(const QByteArray &property)
{
    if (property.size() > qsizetype{maxXSettingsBytes}) {
        return std::nullopt;
    }
    XSettingsFields fields(property);
    fields.skip(4); // The serial number: who reads all each time needs none.
    const auto count = fields.number<std::uint32_t>();
    XSettings settings;
    for (std::uint32_t i = 0; i < count && !fields.hasFailed(); ++i) {
        const auto type = static_cast<SettingType>(fields.number<std::uint8_t>());
        fields.skip(1);
        const QByteArray name = fields.text(fields.number<std::uint16_t>());
        fields.skip(4); // The serial number of its last change.
        switch (type) {
        case SettingType::Number:
            settings.numbers.insert(name, fields.number<std::int32_t>());
            break;
        case SettingType::Text:
            settings.texts.insert(name, fields.text(fields.number<std::uint32_t>()));
            break;
        case SettingType::Colour:
            fields.skip(8);
            break;
        default:
            return std::nullopt;
        }
    }
    return fields.hasFailed() ? std::nullopt : std::optional(settings);
}
