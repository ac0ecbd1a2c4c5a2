#pragma once

#include <QList>
#include <QTextBrowser>
#include <QUrl>

#include <optional>

/// The text of a pop-up, without frame or background. Nothing in it can be selected, and nothing that it refers to is
/// ever loaded: the text comes from elsewhere and may name any file of the user's or address of the network.
/// When the desktop gets other colours or another font, the text has them at once.
/// A click on a link is told by anchorClicked() and does nothing else.
class KivTextView final : public QTextBrowser
{
    Q_OBJECT

public:
    explicit KivTextView(QWidget *parent);

    /// Shows the text at `width` points: HTML as such (notify/record/MessageText.h), else plain with links to the
    /// addresses in it. HTML is written anew before (notify/text/CleanHtml.h): its source is never shown. Of a plain
    /// text no more than maxTextBytes are shown, in 8,000 lines and 8,000 changes of script, which is what Qt lays out
    /// in a moment, and then an ellipsis; no more than 200 links are made.
    void setMessage(const QString &text, int width);

    /// Lays it out anew at that width; a table of HTML that is too wide for it is dissolved, and one that no longer is
    /// comes back.
    void setTextWidth(int width);

    /// The height of all the text at that width, in points.
    [[nodiscard]] float textHeight() const;

    struct Link {
        int start;
        int length;
        QUrl address;
    };
    /// The first 200 links in it, in their order, by their place in shownText().
    [[nodiscard]] const QList<Link> &links() const;
    /// The text without its formats.
    [[nodiscard]] QString shownText() const { return document()->toPlainText(); }
    /// Where on the screen the gap before that character is, as high as its line.
    [[nodiscard]] QRect placeOf(int position) const;

    /// The lines or parts of lines that the link takes, in the viewport's coordinates; what is scrolled away, too.
    [[nodiscard]] QRegion regionOf(const Link &link) const;
    /// Scrolls as far as is needed for its beginning to be seen.
    void showLink(const Link &link);
    /// The link, by its place in links(), that the keys are at while the view has the focus; none at first. For
    /// assistive technology only.
    [[nodiscard]] std::optional<int> focusedLink() const noexcept { return m_focusedLink; }
    void setFocusedLink(std::optional<int> link) noexcept { m_focusedLink = link; }

    /// An empty image, whatever is asked for.
    [[nodiscard]] QVariant loadResource(int type, const QUrl &name) override;

Q_SIGNALS:
    /// The text has another font, and may take more or less room than before.
    void fontChanged();

protected:
    void changeEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void setSelectedRange();
    void setPlainMessage(const QString &text);
    void setHtmlMessage(int width);
    void setDocumentWidth(int width);
    [[nodiscard]] QColor linkColour() const;
    [[nodiscard]] QList<Link> linksOfDocument() const;

    QString m_message; ///< As it came; null before the first.
    bool m_isHtml = false;
    std::optional<int> m_focusedLink;
    mutable std::optional<QList<Link>> m_links; ///< Once somebody has asked for those of the message.
};
