#include "platform/linux/desktop/StartScale.h"

#include "platform/LogCategories.h"
#include "platform/linux/desktop/DesktopRules.h"
#include "platform/linux/desktop/XSettingsWatch.h"
#include "platform/linux/include/XConnection.h"

namespace
{

constexpr char scaleVariable[] = "QT_SCALE_FACTOR";
bool isScaleOurs = false;

/// All screens have those of the first.
QByteArray xResources(xcb_connection_t *x)
{
    constexpr std::uint32_t maxLength = 64 * 1024; // In units of four bytes.
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    const auto cookie = xcb_get_property(x, false, root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 0, maxLength);
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
    return reply ? QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()))
                 : QByteArray();
}

} // namespace

void StartScale::announce(xcb_connection_t *x, int screen)
{
    // What the user has said to Qt counts, and Qt would multiply ours with it.
    if (qEnvironmentVariableIsSet(scaleVariable) || !qEnvironmentVariableIsEmpty("QT_SCREEN_SCALE_FACTORS") ||
        qgetenv("QT_ENABLE_HIGHDPI_SCALING") == "0") {
        return;
    }
    const XSettings settings = askForXSettings(x, screen);
    if (settings.number("Gdk/WindowScalingFactor").value_or(1) == 1) {
        return;
    }
    const double scale = scaleBeyondDpi(settings, xftDpi(xResources(x)));
    if (scale != 1) {
        qCDebug(agentLog, "the desktop's scale is %g times what its dots per inch say", scale);
        isScaleOurs = true;
        qputenv(scaleVariable, QByteArray::number(scale));
    }
}

void StartScale::withdraw()
{
    if (isScaleOurs) {
        qunsetenv(scaleVariable);
    }
}

double xftDpi(const QByteArray &resources)
{
    for (const QByteArray &line : resources.split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.first(colon).trimmed() == "Xft.dpi") {
            const double dpi = line.mid(colon + 1).trimmed().toDouble();
            return dpi > 0 && dpi < 10'000 ? dpi : 0;
        }
    }
    return 0;
}
