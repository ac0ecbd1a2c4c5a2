#pragma once

#include <QImage>

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

/// A visual of the X screen, in which a window can be made and painted from a QImage.
struct XVisual {
    xcb_visualid_t id = XCB_NONE;
    std::uint8_t depth = 0;
    QImage::Format format = QImage::Format_Invalid; ///< That of an image whose bytes are the visual's pixels.

    [[nodiscard]] bool isTranslucent() const noexcept { return depth == 32; }
    /// Whether pixels have no colours but those of a colormap: see ColourCells.
    [[nodiscard]] bool isOfCells() const noexcept { return format == QImage::Format_Indexed8; }
};

/// The QImage format of a TrueColor visual, or of one with 256 colours; Format_Invalid for a layout that QImage does
/// not have.
[[nodiscard]] QImage::Format imageFormat(std::uint8_t depth, std::uint32_t redMask);

/// The visual of that id, or nothing when the screen has none or it cannot be painted.
[[nodiscard]] std::optional<XVisual> findVisual(xcb_screen_t *screen, xcb_visualid_t id);
