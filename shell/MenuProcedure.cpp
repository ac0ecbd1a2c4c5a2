#include "shell/MenuProcedure.h"

#include "menu/MenuCommands.h"
#include "menu/MenuEntries.h"
#include "platform/Bundle.h"
#include "platform/LogCategories.h"
#include "platform/Workspace.h"
#include "platform/alert/AlertPanel.h"
#include "shell/AlertRunner.h"
#include "shell/PreferencesPane.h"
#include "shell/ProcessState.h"
#include "shell/ProductInformation.h"
#include "shell/ProductTexts.h"
#include "shell/link/EventCodes.h"
#include "shell/link/EventLink.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace
{
void forward(std::uint32_t code)
{
    qCDebug(linkLog, "command %u goes to process %u", code, static_cast<unsigned int>(__owpsn.lowLongOfPSN));
    AppleEvent event{};
    if (!kivmAECreateEvent(&__mypsn, &__owpsn, kMenuEvtAction, &event)) {
        return;
    }
    constexpr std::uint32_t count = 1;
    AEPutParamPtr(&event, kMenuParamActions, typeMenuActionList, &code, sizeof code);
    AEPutParamPtr(&event, kMenuParamActionCount, typeUInt32, &count, sizeof count);
    kivmAESendEvent(&event, nullptr, false);
    kivmAEDisposeEvent(&event);
}

void openPreferences()
{
    const QDir ours(QCoreApplication::applicationDirPath());
    Workspace::openFile(ours.absoluteFilePath(QFile::decodeName(preferencesPane)));
}

void openSupportPage()
{
    Workspace::openUrl(supportPage(Bundle::main().infoDictionary()));
}

void showCredits()
{
    [[maybe_unused]] const int onlyButton =
        __run_alert(QString::fromUtf16(ProductTexts::creditsTitle), QString::fromUtf16(ProductTexts::credits),
                    QStringLiteral("Close"));
}

void showProductInformation()
{
    const ProductInformation information = productInformation(Bundle::main().infoDictionary());
    switch (__run_alert(QString::fromUtf16(ProductTexts::informationTitle), information.body, QStringLiteral("Close"),
                        QStringLiteral("Home..."), QStringLiteral("Credits"))) {
    case AlertPanel::Alternate:
        Workspace::openUrl(information.home);
        break;
    case AlertPanel::Other:
        showCredits();
        break;
    default:
        break;
    }
}

void disconnectIfConfirmed()
{
    const int answer = __run_alert(QString::fromUtf16(ProductTexts::disconnectTitle),
                                   QStringLiteral("Your programs will continue to run after disconnection.\n"
                                                  "You can reconnect to this session remotely later.\n\n"
                                                  "Do you want to disconnect this session?"),
                                   QStringLiteral("Yes, disconnect"), QStringLiteral("No, continue"));
    if (answer == AlertPanel::Default) {
        forward(kMenuCmdDisconnect);
    }
}
} // namespace

void __menu_proc(KIVMenuObj *, std::uint32_t code)
{
    qCDebug(agentLog) << "chosen:" << menuEntryTitle(code) << code;
    switch (code) {
    case kMenuCmdServerPrefs:
        openPreferences();
        break;
    case kMenuCmdAbout:
        showProductInformation();
        break;
    case kMenuCmdDisconnect:
        disconnectIfConfirmed();
        break;
    case kMenuCmdSupport:
        openSupportPage();
        break;
    default:
        forward(code);
    }
}
