#pragma once

#include "tests/session/support/XClient.h"
#include "tests/support/XSettingsProperty.h"

#include <QHash>

/// The settings of a desktop, as the program keeps them that programs of all toolkits ask (XSETTINGS). It ends, and is
/// no longer the one that is asked, with this object.
class DesktopSettings final : public XClient
{
public:
    explicit DesktopSettings(const PrivateXServer &server,
                             XSettingsProperty::ByteOrder order = XSettingsProperty::ByteOrder::Little);

    void setNumber(const QByteArray &name, std::int32_t value);
    void setText(const QByteArray &name, const QByteArray &value);
    /// 96 is a scale of 1.
    void setDotsPerInch(int dots) { setNumber("Xft/DPI", dots * 1024); }
    /// Whatever these bytes may mean.
    void setBytes(const QByteArray &bytes);

private:
    void publish();

    const XSettingsProperty::ByteOrder m_order;
    xcb_window_t m_window;
    std::uint32_t m_serial = 0;
    QHash<QByteArray, std::int32_t> m_numbers;
    QHash<QByteArray, QByteArray> m_texts;
};
