#include "fuzz/Check.h"
#include "platform/linux/desktop/DesktopRules.h"
#include "platform/linux/desktop/FontDescription.h"
#include "platform/linux/desktop/XSettings.h"

#include <cstddef>
#include <cstdint>

/// Whatever a settings daemon says is read or refused as a whole, and what follows from it stays within its bounds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    if (const std::optional<XSettings> settings = readXSettings(bytes)) {
        check(readXSettings(bytes + '\0').has_value());
        const double scale = scaleBeyondDpi(*settings, 0);
        check(scale >= 1 && scale <= 8);
        check(isDesktopDark(ColourScheme::Dark, *settings) && !isDesktopDark(ColourScheme::Light, *settings));
        for (const QByteArray &text : settings->texts) {
            const FontDescription font = readFontDescription(QString::fromUtf8(text));
            check(font.size == 0 || (font.size >= 4 && font.size <= 96));
            check(!font.families.contains(QString()));
        }
    } else {
        check(size == 0 || !readXSettings(bytes.first(bytes.size() - 1)));
    }
    return 0;
}
