#include "tests/session/support/DesktopSettings.h"

#include <QByteArray>

DesktopSettings::DesktopSettings(const PrivateXServer &server)
    : XClient(server)
    , m_window(xcb_generate_id(connection()))
{
    xcb_create_window(connection(), 0, m_window, root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
    setDotsPerInch(96);
    xcb_set_selection_owner(connection(), m_window, atom("_XSETTINGS_S0"), XCB_CURRENT_TIME);
    xcb_flush(connection());
}

void DesktopSettings::setDotsPerInch(int dots)
{
    QByteArray bytes;
    const auto append = [&bytes](auto number) { bytes.append(reinterpret_cast<const char *>(&number), sizeof number); };
    append(std::uint32_t{0}); // Least significant byte first.
    append(++m_serial);
    append(std::uint32_t{1}); // One setting: an integer, its name, padded, its serial number and its value.
    append(std::uint8_t{0});
    append(std::uint8_t{0});
    const QByteArray name("Xft/DPI");
    append(static_cast<std::uint16_t>(name.size()));
    bytes += name + '\0';
    append(m_serial);
    append(static_cast<std::uint32_t>(dots * 1024));
    const xcb_atom_t property = atom("_XSETTINGS_SETTINGS");
    xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, m_window, property, property, 8,
                        static_cast<std::uint32_t>(bytes.size()), bytes.constData());
    xcb_flush(connection());
}
