#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QTimer;

/// A modal panel that tells the user something and offers up to three buttons: the title as a bold first line, the
/// message below it. Runs of tabs in the message begin a new column, and the columns of all its lines line up. Return
/// answers with the default button. So does Escape, save in a question: there, where the alternate button is the only
/// other one, it is the answer that changes nothing. Main thread only.
class AlertPanel final : public QDialog
{
    Q_OBJECT

public:
    enum class Style { Informational, Critical };

    /// What runModal() answers with. The numbers are the ones that callers of alerts are used to.
    enum Response { Alternate = 0, Default = 1, Other = -1, NoResponse = -2 };

    struct Texts {
        QString title;
        QString message;
        QString defaultButton;
        QString alternateButton; ///< Null for no such button.
        QString otherButton;     ///< Null for no such button.
    };

    AlertPanel(Style style, const Texts &texts);

    /// Shows the panel in front of everything, activates it and returns once it has been answered. NoResponse when it
    /// was closed without an answer, as the end of the event loop does.
    [[nodiscard]] Response runModal();

    void reject() override;

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void answer(Response response);
    void drawSign();

    const Style m_style;
    Response m_escape;
    Response m_response = NoResponse;
    QLabel *m_icon = nullptr;
    QTimer *m_toFront = nullptr; ///< Runs while the panel is up and the program is not the active one.
};
