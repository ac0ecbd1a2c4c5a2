#include "tests/platform/linux/PrivatePanel.h"

#include "platform/linux/include/XConnection.h"

bool PrivatePanel::start()
{
    // The panel waits some seconds for a window manager, which it knows by this; none is wanted here.
    const std::uint32_t one = 1;
    xcb_change_property(XConnection::get(), XCB_PROP_MODE_REPLACE, XConnection::screen()->root,
                        XConnection::atom("_NET_NUMBER_OF_DESKTOPS"), XCB_ATOM_CARDINAL, 32, 1, &one);
    xcb_flush(XConnection::get());
    // It says a lot, and nothing about the agent.
    m_program.process().setProcessChannelMode(QProcess::SeparateChannels);
    m_program.process().setStandardErrorFile(QProcess::nullDevice());
    return m_program.start(QStringLiteral(KIV_PRIVATE_DESKTOP), {QStringLiteral("panel"), m_folder.path()});
}
