#pragma once

#include "tests/session/support/XClient.h"

/// The settings of a desktop, as the program keeps them that programs of all toolkits ask (XSETTINGS). Programs that
/// start later follow them.
class DesktopSettings final : public XClient
{
public:
    explicit DesktopSettings(const PrivateXServer &server);

    /// 96 is a scale of 1.
    void setDotsPerInch(int dots);

private:
    xcb_window_t m_window;
    std::uint32_t m_serial = 0;
};
