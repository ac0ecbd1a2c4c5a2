#pragma once

#include "notify/rules/PreferencesFile.h"

#include <QDialog>
#include <QHash>

#include <functional>
#include <initializer_list>

class QCheckBox;
class QComboBox;
class QLabel;

/// The user's notification settings, to be looked at and changed. Each change is saved at once and announced, and what
/// others change meanwhile is shown once the window is used again or reload() is called. Main thread only.
class SettingsWindow final : public QDialog
{
    Q_OBJECT

public:
    /// `announce` tells the agent that the settings have changed; false when nobody could be told.
    SettingsWindow(PreferencesFile file, std::function<bool()> announce);

    /// Shows what the file holds now.
    void reload();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] QWidget *switches(const QString &title, std::initializer_list<bool NotificationSettings::*> which);
    [[nodiscard]] QWidget *choices();
    void change(const SettingEntry &setting, std::int32_t value);
    void display(const NotificationSettings &settings);

    const PreferencesFile m_file;
    const std::function<bool()> m_announce;
    QHash<const SettingEntry *, QCheckBox *> m_switches;
    QHash<const SettingEntry *, QComboBox *> m_choices;
    QLabel *const m_lastMessage;
    QLabel *const m_remark; ///< What went wrong; hidden while nothing has.
};
