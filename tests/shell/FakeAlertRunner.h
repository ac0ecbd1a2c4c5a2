#pragma once

#include <QString>

#include <deque>
#include <vector>

/// Alerts that are answered as soon as they are asked for. Linking this takes the place of the real ones.
namespace FakeAlertRunner
{

struct Alert {
    QString title;
    QString message;
    QString defaultButton;
    QString alternateButton; ///< Null for none, as the next one.
    QString otherButton;
};

/// What was shown.
extern std::vector<Alert> alerts;
/// What comes as the answers, in order; -2 when there is none left.
extern std::deque<int> answers;

} // namespace FakeAlertRunner
