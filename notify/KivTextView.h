#pragma once

#include <QTextBrowser>

/// The text of a pop-up, without frame or background. Nothing in it can be selected, and nothing that it refers to is
/// ever loaded: the text comes from elsewhere and may name any file of the user's or address of the network.
/// A click on a link is told by anchorClicked() and does nothing else.
class KivTextView final : public QTextBrowser
{
    Q_OBJECT

public:
    explicit KivTextView(QWidget *parent);

    /// Shows the text at `width` points: as HTML when it begins with "<", else plain with links to the addresses in it.
    /// HTML that would take too long is shown plain, and a text that would take too long to its half.
    void setMessage(const QString &text, int width);

    /// The height of all the text at that width, in points.
    [[nodiscard]] float textHeight() const;

    /// Nothing: a text of HTML may ask for any file or address.
    [[nodiscard]] QVariant loadResource(int type, const QUrl &name) override;

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void setSelectedRange();
    void setPlainMessage(const QString &text);
    void setHtmlMessage(const QString &text);
    [[nodiscard]] QColor linkColour() const;
};
