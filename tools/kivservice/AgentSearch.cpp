#include "tools/kivservice/AgentSearch.h"

#include "platform/linux/include/EventBusName.h"
#include "platform/linux/include/ExecutableName.h"
#include "shell/ProductTexts.h"

#include <algorithm>

std::vector<pid_t> agentsAmong(const QStringList &busNames)
{
    std::vector<pid_t> agents;
    for (const QString &name : busNames) {
        const auto pid = processOfEventBusName(name);
        if (pid && executableName(static_cast<pid_t>(*pid)) == ProductTexts::programName) {
            agents.push_back(static_cast<pid_t>(*pid));
        }
    }
    std::ranges::sort(agents);
    return agents;
}
