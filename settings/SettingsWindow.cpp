#include "settings/SettingsWindow.h"

#include "notify/rules/SettingTable.h"
#include "settings/ProductTexts.h"
#include "settings/SettingTexts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace
{

const SettingEntry &settingOf(decltype(SettingEntry::field) field)
{
    const std::span<const SettingEntry> table = settingTable();
    return *std::ranges::find(table, field, &SettingEntry::field);
}

QLabel *note(const QString &text, QWidget *parent)
{
    auto *const label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QString lastMessage(const QString &id)
{
    return id.isEmpty() || id == PreferencesFile::noMessageYet ? QStringLiteral("none yet") : id;
}

} // namespace

SettingsWindow::SettingsWindow(PreferencesFile file, std::function<bool()> announce)
    : m_file(std::move(file))
    , m_announce(std::move(announce))
    , m_lastMessage(note({}, this))
    , m_remark(note({}, this))
{
    using Settings = NotificationSettings;
    setWindowTitle(QString::fromUtf16(ProductTexts::settingsTitle));
    setWindowIcon(QIcon::fromTheme(ProductTexts::desktopEntry));
    m_lastMessage->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_remark->setObjectName(QStringLiteral("remark"));
    m_lastMessage->setObjectName(QStringLiteral("lastMessage"));

    auto *const groups = new QHBoxLayout;
    groups->addWidget(switches(QStringLiteral("Show messages of the types"),
                               {&Settings::shouldDisplayUpdates, &Settings::shouldDisplayWarnings,
                                &Settings::shouldDisplayNews, &Settings::shouldDisplayNotices}));
    groups->addWidget(switches(QStringLiteral("and of the priorities"),
                               {&Settings::shouldDisplayHighPriority, &Settings::shouldDisplayMediumPriority,
                                &Settings::shouldDisplayLowPriority}));
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(groups);
    layout->addWidget(note(QStringLiteral("What the server has to say at once is always shown."), this));
    layout->addWidget(choices());
    layout->addWidget(m_remark);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    reload();
}

QWidget *SettingsWindow::switches(const QString &title, std::initializer_list<bool NotificationSettings::*> which)
{
    auto *const group = new QGroupBox(title, this);
    auto *const layout = new QVBoxLayout(group);
    for (const auto field : which) {
        const SettingEntry &setting = settingOf(field);
        auto *const box = new QCheckBox(SettingTexts::title(setting), group);
        box->setObjectName(setting.key);
        connect(box, &QCheckBox::clicked, this, [this, &setting](bool isOn) { change(setting, isOn ? 1 : 0); });
        m_switches.insert(&setting, box);
        layout->addWidget(box);
    }
    layout->addStretch();
    return group;
}

QWidget *SettingsWindow::choices()
{
    auto *const group = new QGroupBox(this);
    auto *const layout = new QFormLayout(group);
    for (const SettingEntry &setting : settingTable()) {
        if (setting.isSwitch()) {
            continue;
        }
        auto *const box = new QComboBox(group);
        box->setObjectName(setting.key);
        for (std::int32_t code = setting.lowest; code <= setting.highest; ++code) {
            box->addItem(SettingTexts::meaning(setting, code), code);
        }
        connect(box, &QComboBox::activated, this,
                [this, &setting, box](int index) { change(setting, box->itemData(index).toInt()); });
        m_choices.insert(&setting, box);
        box->setFocusPolicy(Qt::StrongFocus);
        box->installEventFilter(this);
        layout->addRow(SettingTexts::title(setting), box);
    }
    layout->addRow(QStringLiteral("Last message:"), m_lastMessage);
    return group;
}

void SettingsWindow::change(const SettingEntry &setting, std::int32_t value)
{
    const QString obstacle = m_file.change(setting, value);
    const bool isTold = obstacle.isNull() && m_announce();
    reload();
    if (!obstacle.isNull()) {
        m_remark->setText(obstacle);
    } else if (!isTold) {
        m_remark->setText(
            QStringLiteral("Saved. There is no session bus to tell of it: it holds from the next login."));
    }
    m_remark->setVisible(!m_remark->text().isEmpty());
}

void SettingsWindow::reload()
{
    const std::optional<PreferencesFile::Contents> contents = m_file.read();
    m_remark->setText(contents ? QString() : QStringLiteral("%1 cannot be read.").arg(m_file.path()));
    m_remark->setVisible(!contents);
    m_lastMessage->setText(lastMessage(contents ? contents->lastMessageId : QString()));
    display(contents ? contents->settings : NotificationSettings::fromDictionary({})); // As the agent sees it.
}

void SettingsWindow::display(const NotificationSettings &settings)
{
    for (const SettingEntry &setting : settingTable()) {
        const std::int32_t code = setting.codeFor(setting.valueIn(settings));
        if (setting.isSwitch()) {
            m_switches.value(&setting)->setChecked(code != 0);
        } else {
            QComboBox *const box = m_choices.value(&setting);
            box->setCurrentIndex(box->findData(code));
        }
    }
}

bool SettingsWindow::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate) {
        reload();
    }
    return QDialog::event(event);
}

bool SettingsWindow::eventFilter(QObject *watched, QEvent *event)
{
    // Whoever only turns the wheel over the window wants to change nothing.
    const auto *const list = qobject_cast<QComboBox *>(watched);
    if (event->type() == QEvent::Wheel && list && !list->hasFocus()) {
        event->ignore();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}
