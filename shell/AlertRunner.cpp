#include "shell/AlertRunner.h"

#include "platform/alert/AlertMessage.h"
#include "platform/alert/AlertPanel.h"
#include "shell/ProcessState.h"

namespace
{
/// Keeps the status item from being pressed, and sees to it that it can be again, whatever ends the panel.
class StatusItemDisabled final
{
public:
    StatusItemDisabled() { setEnabled(false); }
    ~StatusItemDisabled() { setEnabled(true); }
    StatusItemDisabled(const StatusItemDisabled &) = delete;
    StatusItemDisabled &operator=(const StatusItemDisabled &) = delete;

private:
    static void setEnabled(bool enabled)
    {
        if (__menu) {
            __menu->setEnabled(enabled);
        }
    }
};
} // namespace

int __run_alert(const QString &title, const QString &message, const QString &defaultButton,
                const QString &alternateButton, const QString &otherButton)
{
    AlertPanel panel(AlertPanel::Style::Informational,
                     {title, withoutFormatDirectives(message), defaultButton, alternateButton, otherButton});
    const StatusItemDisabled whileThePanelIsUp;
    return panel.runModal();
}
