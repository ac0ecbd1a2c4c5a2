#pragma once

#include <QString>

#include <cstdint>
#include <utility>

/// One size at which the main display can show the desktop, as an entry of the resolution submenu.
class KIVDspRes final
{
public:
    KIVDspRes(QString title, std::int32_t width, std::int32_t height)
        : m_width(width)
        , m_height(height)
        , m_title(std::move(title))
    {
    }

    [[nodiscard]] std::int32_t width() const noexcept { return m_width; }   ///< In pixels.
    [[nodiscard]] std::int32_t height() const noexcept { return m_height; } ///< In pixels.
    [[nodiscard]] const QString &title() const noexcept { return m_title; }

private:
    std::int32_t m_width;
    std::int32_t m_height;
    QString m_title;
};
