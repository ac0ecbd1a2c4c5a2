#include "tests/session/support/DesktopSettings.h"

DesktopSettings::DesktopSettings(const PrivateXServer &server, XSettingsProperty::ByteOrder order)
    : XClient(server)
    , m_order(order)
    , m_window(xcb_generate_id(connection()))
{
    xcb_create_window(connection(), 0, m_window, root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
    setDotsPerInch(96);
    xcb_set_selection_owner(connection(), m_window, atom("_XSETTINGS_S0"), XCB_CURRENT_TIME);
    xcb_flush(connection());
}

void DesktopSettings::setNumber(const QByteArray &name, std::int32_t value)
{
    m_numbers.insert(name, value);
    publish();
}

void DesktopSettings::setText(const QByteArray &name, const QByteArray &value)
{
    m_texts.insert(name, value);
    publish();
}

void DesktopSettings::setBytes(const QByteArray &bytes)
{
    const xcb_atom_t property = atom("_XSETTINGS_SETTINGS");
    xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, m_window, property, property, 8,
                        static_cast<std::uint32_t>(bytes.size()), bytes.constData());
    xcb_flush(connection());
}

void DesktopSettings::publish()
{
    XSettingsProperty property(m_order, ++m_serial);
    for (auto it = m_numbers.cbegin(); it != m_numbers.cend(); ++it) {
        property.addNumber(it.key(), it.value());
    }
    for (auto it = m_texts.cbegin(); it != m_texts.cend(); ++it) {
        property.addText(it.key(), it.value());
    }
    setBytes(property.bytes());
}
