#include "tests/shell/FakeAlertRunner.h"

#include "shell/AlertRunner.h"

namespace FakeAlertRunner
{
std::vector<Alert> alerts;
std::deque<int> answers;
} // namespace FakeAlertRunner

int __run_alert(const QString &title, const QString &message, const QString &defaultButton,
                const QString &alternateButton, const QString &otherButton)
{
    using namespace FakeAlertRunner;
    alerts.push_back({title, message, defaultButton, alternateButton, otherButton});
    if (answers.empty()) {
        return -2;
    }
    const int answer = answers.front();
    answers.pop_front();
    return answer;
}
