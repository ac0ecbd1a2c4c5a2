#include "platform/alert/AlertPanel.h"

#include "platform/LogCategories.h"
#include "platform/ProductTexts.h"
#include "platform/alert/AccessibleAlert.h"
#include "platform/alert/AlertIcon.h"
#include "platform/alert/AlertMessage.h"
#include "platform/screen/WindowStacking.h"
#include "platform/text/SystemFont.h"

#include <QDialogButtonBox>
#include <QEventLoop>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>

namespace
{
constexpr int margin = 20;
constexpr int iconSize = 48;
constexpr int columnGap = 16;
constexpr int wrapWidth = 420; ///< A message in one column is wrapped at this width.
constexpr std::chrono::milliseconds toFrontInterval(250);

QLabel *newLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

const char *description(AlertPanel::Response response)
{
    switch (response) {
    case AlertPanel::Default:
        return "the default button";
    case AlertPanel::Alternate:
        return "the alternate button";
    case AlertPanel::Other:
        return "the other button";
    case AlertPanel::NoResponse:
        return "not at all";
    }
    return "";
}

/// One label where there are no columns, else a grid of them.
QLayout *newMessageLayout(const QString &message, QWidget *parent)
{
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(columnGap);
    grid->setVerticalSpacing(0);
    if (!message.contains(u'\t')) {
        QLabel *label = newLabel(message, parent);
        label->setWordWrap(true);
        label->setMinimumWidth(wrapWidth);
        grid->addWidget(label, 0, 0);
        return grid;
    }
    int row = 0;
    // A line break at the very end ends the last line and begins none.
    for (const QStringList &cells : alertColumns(message.endsWith(u'\n') ? message.chopped(1) : message)) {
        for (int column = 0; column < cells.size(); ++column) {
            grid->addWidget(newLabel(cells.at(column), parent), row, column);
        }
        ++row;
    }
    grid->setColumnStretch(grid->columnCount(), 1);
    return grid;
}
} // namespace

AlertPanel::AlertPanel(Style style, const Texts &texts)
    : QDialog(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowStaysOnTopHint)
    , m_style(style)
    , m_escape(!texts.alternateButton.isNull() && texts.otherButton.isNull() ? Alternate : Default)
{
    AccessibleAlert::makeFor(*this);
    setWindowTitle(QString::fromUtf16(ProductTexts::panelTitle));
    setAccessibleName(texts.title);
    setAccessibleDescription(alertWords(texts.message));
    setFont(
        fontFor(texts.title + texts.message + texts.defaultButton + texts.alternateButton + texts.otherButton, font()));

    m_icon = new QLabel(this);
    m_icon->setFixedSize(iconSize, iconSize);
    drawSign();

    QLabel *title = newLabel(texts.title, this);
    title->setWordWrap(true);
    title->setFont(boldOf(title->font()));

    auto *buttons = new QDialogButtonBox(this);
    const auto addButton = [&](const QString &text, QDialogButtonBox::ButtonRole role, Response response) {
        if (text.isNull()) {
            return;
        }
        QPushButton *button = buttons->addButton(text, role);
        button->setAutoDefault(response == Default);
        button->setDefault(response == Default);
        connect(button, &QPushButton::clicked, this, [this, response] { answer(response); });
        if (response == Default) {
            button->setFocus();
        }
    };
    addButton(texts.defaultButton, QDialogButtonBox::AcceptRole, Default);
    addButton(texts.alternateButton, QDialogButtonBox::RejectRole, Alternate);
    addButton(texts.otherButton, QDialogButtonBox::ActionRole, Other);

    auto *words = new QVBoxLayout;
    words->setSpacing(margin / 2);
    words->addWidget(title);
    words->addLayout(newMessageLayout(texts.message, this));
    words->addStretch();

    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setHorizontalSpacing(margin);
    layout->setVerticalSpacing(margin);
    layout->addWidget(m_icon, 0, 0, Qt::AlignTop);
    layout->addLayout(words, 0, 1);
    layout->addWidget(buttons, 1, 0, 1, 2);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    // Again and again: nobody tells a program that works in the background when another window comes to cover it.
    m_toFront = new QTimer(this);
    connect(m_toFront, &QTimer::timeout, this, [this] { bringToFront(*this); });
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) {
            m_toFront->stop();
        } else if (isVisible()) {
            bringToFront(*this);
            m_toFront->start(toFrontInterval);
        }
    });
}

AlertPanel::Response AlertPanel::runModal()
{
    qCDebug(agentLog) << "asks:" << accessibleName();
    setModal(true);
    show();
    bringToFrontWithKeyboard(*this);
    if (QGuiApplication::applicationState() != Qt::ApplicationActive) {
        m_toFront->start(toFrontInterval); // It may never become that.
    }
    QEventLoop loop;
    connect(this, &QDialog::finished, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::DialogExec);
    hide();
    qCDebug(agentLog, "answered: %s", description(m_response));
    return m_response;
}

void AlertPanel::reject()
{
    answer(m_escape);
}

void AlertPanel::showEvent(QShowEvent *event)
{
    drawSign(); // A panel that is up is shown anew when the scale changes.
    QDialog::showEvent(event);
}

void AlertPanel::closeEvent(QCloseEvent *)
{
    // Not by way of reject(): a panel that goes with its application has not been answered.
    answer(NoResponse);
}

void AlertPanel::drawSign()
{
    const AlertSign sign = m_style == Style::Critical ? AlertSign::Critical : AlertSign::Information;
    m_icon->setPixmap(alertIcon(sign, iconSize, devicePixelRatio()));
}

void AlertPanel::answer(Response response)
{
    m_response = response;
    done(response);
}
