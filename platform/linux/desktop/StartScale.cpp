#include "platform/linux/desktop/StartScale.h"

#include "platform/LogCategories.h"
#include "platform/linux/desktop/DesktopRules.h"
#include "platform/linux/desktop/XResources.h"
#include "platform/linux/desktop/XSettingsWatch.h"

#include <QByteArrayList>

#include <algorithm>

namespace
{

constexpr char factorsVariable[] = "QT_SCREEN_SCALE_FACTORS";
constexpr int maxScreens = 16; ///< More have theirs as soon as the scale is followed.

std::optional<double> announcedScale;

bool hasUserChosen()
{
    return qEnvironmentVariableIsSet("QT_SCALE_FACTOR") || !qEnvironmentVariableIsEmpty(factorsVariable) ||
           qgetenv("QT_ENABLE_HIGHDPI_SCALING") == "0" || qEnvironmentVariableIsSet("QT_FONT_DPI") ||
           qEnvironmentVariableIsSet("QT_USE_PHYSICAL_DPI") ||
           qEnvironmentVariableIsSet("QT_SCALE_FACTOR_ROUNDING_POLICY");
}

} // namespace

void StartScale::announce(xcb_connection_t *x, int screen)
{
    if (hasUserChosen()) {
        return;
    }
    const XSettings settings = askForXSettings(x, screen);
    announcedScale = desktopScale(settings, saysDotsPerInch(settings) ? 0 : xftDpi(askForXResources(x)));
    // Unless one of the factors is another than 1, Qt never looks for those of its screens.
    constexpr double hardlyMoreThanOne = 1 + 1e-9;
    const QByteArray factor = QByteArray::number(std::max(*announcedScale, hardlyMoreThanOne), 'g', 12);
    qputenv(factorsVariable, QByteArrayList(maxScreens, factor).join(';'));
    if (*announcedScale != 1) {
        qCDebug(agentLog, "the desktop's scale is %g", *announcedScale);
    }
}

std::optional<double> StartScale::announced()
{
    return announcedScale;
}

void StartScale::withdraw()
{
    if (announcedScale) {
        qunsetenv(factorsVariable);
    }
}
