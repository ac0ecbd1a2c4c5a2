#pragma once

#include <QByteArray>
#include <QtEndian>

#include <cstdint>

/// Writes the property of an XSETTINGS manager.
class XSettingsProperty final
{
public:
    enum class ByteOrder : std::uint8_t { Little = 0, Big = 1 };

    /// Who reads it takes note of a setting whose serial number is higher than before.
    explicit XSettingsProperty(ByteOrder order, std::uint32_t serial = 1)
        : m_order(order)
        , m_serial(serial)
    {
    }

    void addNumber(const QByteArray &name, std::int32_t value)
    {
        begin(0, name);
        append(value);
    }
    void addText(const QByteArray &name, const QByteArray &value)
    {
        begin(1, name);
        append(static_cast<std::uint32_t>(value.size()));
        appendPadded(value);
    }
    void addColour(const QByteArray &name)
    {
        begin(2, name);
        m_settings += QByteArray(8, '\x7f');
    }

    [[nodiscard]] QByteArray bytes() const
    {
        XSettingsProperty head(m_order);
        head.append(static_cast<std::uint8_t>(m_order));
        head.m_settings += QByteArray(3, '\0');
        head.append(m_serial);
        head.append(m_count);
        return head.m_settings + m_settings;
    }

private:
    void begin(std::uint8_t type, const QByteArray &name)
    {
        ++m_count;
        append(type);
        append(std::uint8_t{0});
        append(static_cast<std::uint16_t>(name.size()));
        appendPadded(name);
        append(m_serial);
    }
    void appendPadded(const QByteArray &text) { m_settings += text + QByteArray((4 - text.size() % 4) % 4, '\0'); }
    template <typename Number>
    void append(Number number)
    {
        const Number ordered = m_order == ByteOrder::Big ? qToBigEndian(number) : qToLittleEndian(number);
        m_settings.append(reinterpret_cast<const char *>(&ordered), sizeof ordered);
    }

    const ByteOrder m_order;
    const std::uint32_t m_serial;
    std::uint32_t m_count = 0;
    QByteArray m_settings;
};
