#include "menu/KIVMenuObj.h"

#include "menu/AnchorWindow.h"
#include "menu/AssociatedObjects.h"
#include "menu/ContextMenu.h"
#include "menu/DisplayModes.h"
#include "menu/DisplaySwitch.h"
#include "menu/MenuEnabling.h"
#include "menu/MenuEntries.h"
#include "menu/ProductTexts.h"
#include "menu/StatusItemPlacement.h"
#include "platform/GraphicalSession.h"
#include "platform/LogCategories.h"
#include "platform/MainScreen.h"
#include "platform/StatusBar.h"
#include "platform/SystemCallback.h"
#include "platform/alert/AlertPanel.h"
#include "platform/images/ImageFile.h"
#include "platform/screen/AvailableDisplayModes.h"
#include "platform/screen/MenuPopUp.h"

#include <QKeySequence>
#include <QPointer>
#include <QScopeGuard>
#include <QTimer>

#include <utility>

namespace
{
constexpr char anchorKey[] = "FakeWindow";

std::uint32_t tagOf(const QAction &item)
{
    return item.data().toUInt();
}

/// The item whose submenu holds `item`; null at the top level.
QAction *parentItem(const QAction &item)
{
    const auto *menu = qobject_cast<QMenu *>(item.parent());
    return menu && qobject_cast<QMenu *>(menu->parent()) ? menu->menuAction() : nullptr;
}

/// 0 x 0 when the display has no mode.
QSize currentSize(CGDirectDisplayID display)
{
    const CGDisplayModeRef mode = CGDisplayCopyDisplayMode(display);
    if (!mode) {
        return {0, 0};
    }
    const QSize size(static_cast<int>(CGDisplayModeGetWidth(mode)), static_cast<int>(CGDisplayModeGetHeight(mode)));
    CGDisplayModeRelease(mode);
    return size;
}
} // namespace

KIVMenuObj::KIVMenuObj(const Bundle &bundle, const MenuSurroundings &surroundings)
    : m_bundle(bundle)
    , m_surroundings(surroundings)
    , m_menu(std::make_unique<QMenu>())
{
    // Where the menu is the system's own, it is the system that calls.
    connect(m_menu.get(), &QMenu::aboutToShow, this,
            [this] { inSystemCallback([this] { menuWillOpen(m_menu.get()); }); });
    connect(m_menu.get(), &QMenu::aboutToHide, this,
            [this] { inSystemCallback([this] { menuDidClose(m_menu.get()); }); });
    for (const MenuEntry &entry : menuEntries()) {
        const QString title = QString::fromUtf16(entry.title);
        const bool enabled = entry.choosable == Choosable::Always;
        if (entry.parent == kMenuCmdNone) {
            addMenuItem(title, {}, entry.code, entry.separatorBefore, enabled, false);
        } else {
            addSubItem(itemWithTag(entry.parent), title, {}, entry.code, entry.separatorBefore, enabled, false);
        }
    }
}

KIVMenuObj::~KIVMenuObj()
{
    m_tray.reset();
    m_menu->close(); // With what it hangs on: a menu that ends while it is open does not say that it closes.
    m_menu.reset();
}

QAction *KIVMenuObj::addMenuItem(const QString &title, const QString &key, std::uint32_t code, bool sep, bool enable,
                                 bool check)
{
    return newItem(*m_menu, title, key, code, sep, enable, check);
}

QAction *KIVMenuObj::addSubItem(QAction *parent, const QString &title, const QString &key, std::uint32_t code, bool sep,
                                bool enable, bool check)
{
    if (!parent) {
        return nullptr;
    }
    if (!parent->menu()) {
        parent->setMenu(new QMenu(m_menu.get()));
    }
    return newItem(*parent->menu(), title, key, code, sep, enable, check);
}

QAction *KIVMenuObj::newItem(QMenu &menu, const QString &title, const QString &key, std::uint32_t code, bool sep,
                             bool enable, bool check)
{
    if (sep) {
        menu.addSeparator();
    }
    QAction *item = menu.addAction(title);
    item->setShortcut(QKeySequence(key));
    item->setData(code);
    item->setEnabled(enable);
    if (check) {
        item->setCheckable(true);
        item->setChecked(true);
    }
    // Queued: a command may run an event loop of its own, and the menu's has to have ended by then.
    const auto carryOut = [this, chosen = QPointer<QAction>(item)] {
        // A host that draws the menu itself may send a second choice before the first one's panel has come up.
        if (!chosen || (m_tray && !m_tray->isEnabled())) {
            return;
        }
        if (m_menu->isVisible()) {
            // Screen readers choose past the menu, which does not close by that: first it has to.
            m_chosenInOpenMenu = chosen;
            m_menu->close();
        } else {
            onMenuAction(chosen);
        }
    };
    connect(item, &QAction::triggered, this, carryOut, Qt::QueuedConnection);
    return item;
}

QAction *KIVMenuObj::itemWithTag(std::uint32_t code) const
{
    for (QAction *item : m_menu->actions()) {
        if (!item->isSeparator() && tagOf(*item) == code) {
            return item;
        }
    }
    return nullptr;
}

void KIVMenuObj::updResolutions()
{
    QAction *resolution = itemWithTag(kMenuCmdResolution);
    if (!resolution) {
        return;
    }
    const CGDirectDisplayID display = CGMainDisplayID();
    const CFArrayRef modes = resolution->isEnabled() ? availableDisplayModes(display) : nullptr;
    fillResolutions(*resolution, modes, currentSize(display));
}

void KIVMenuObj::fillResolutions(QAction &resolution, CFArrayRef modes, QSize current)
{
    if (resolution.menu()) {
        resolution.menu()->clear();
    }
    m_dmods.reset();
    if (!modes || CFArrayGetCount(modes) == 0) {
        qCDebug(itemLog, "no display sizes to choose from: %s",
                resolution.isEnabled() ? "the display tells none" : "the service has not made the item active");
        addSubItem(&resolution, menuEntryTitle(kMenuCmdNone), {}, kMenuCmdNone, false, false, false);
        return;
    }
    // Modes none of which is usable leave the submenu empty: the placeholder is for displays that tell nothing.
    m_dmods = displaySizes(modes);
    std::uint32_t index = 0;
    for (const KIVDspRes &size : *m_dmods) {
        const bool isCurrent = size.width() == current.width() && size.height() == current.height();
        addSubItem(&resolution, size.title(), {}, index++, false, true, isCurrent);
    }
}

void KIVMenuObj::switchResolution(std::int32_t index)
{
    if (!m_dmods || index < 0 || static_cast<std::size_t>(index) >= m_dmods->size()) {
        qCDebug(itemLog, "there is no display size %d any more", index);
        return;
    }
    const KIVDspRes &size = (*m_dmods)[static_cast<std::size_t>(index)];
    if (set_dmod(static_cast<std::uint32_t>(size.width()), static_cast<std::uint32_t>(size.height()))) {
        qCDebug(itemLog, "the display has %d x %d pixels", size.width(), size.height());
        return;
    }
    if (GraphicalSession::isEnding()) {
        return; // Nobody is left who would be told.
    }
    qCWarning(itemLog, "%s has not switched the display to %d x %d pixels", serviceTool, size.width(), size.height());
    setEnabled(false);
    const auto enableAgain = qScopeGuard([this] { setEnabled(true); });
    AlertPanel panel(AlertPanel::Style::Critical, {QStringLiteral("Operation failed"),
                                                   QStringLiteral("System could not set the selected resolution."),
                                                   QStringLiteral("Ok"),
                                                   {},
                                                   {}});
    [[maybe_unused]] const AlertPanel::Response onlyButton = panel.runModal();
}

void KIVMenuObj::onMenuAction(QAction *sender)
{
    const QAction *parent = parentItem(*sender);
    if (parent && tagOf(*parent) == kMenuCmdResolution) {
        switchResolution(static_cast<std::int32_t>(tagOf(*sender)));
        return;
    }
    if (m_proc) {
        m_proc(this, tagOf(*sender));
    }
}

void KIVMenuObj::menuWillOpen(QMenu *menu)
{
    if (menu == m_menu.get()) {
        updResolutions();
    }
}

void KIVMenuObj::menuDidClose(QMenu *menu)
{
    if (menu != m_menu.get()) {
        return;
    }
    auto *anchor = qobject_cast<AnchorWindow *>(associatedObject(*menu, anchorKey));
    removeAssociatedObjects(*menu);
    if (anchor) {
        anchor->close();
    }
}

void KIVMenuObj::setMenuProc(MenuProc proc)
{
    m_proc = proc;
}

KIVMenuObj::MenuProc KIVMenuObj::getMenuProc() const
{
    return m_proc;
}

void KIVMenuObj::setFlags(std::uint32_t flags)
{
    if (flags == m_flags) {
        return;
    }
    qCDebug(itemLog, "the service wants %s item, %s", flags & kMenuFlagVisible ? "an" : "no",
            flags & kMenuFlagActive ? "active" : "inactive");
    if ((flags ^ m_flags) & kMenuFlagVisible) {
        // The opposite of what is wanted, so that a new item gets its image below.
        m_flags = (m_flags & ~kMenuFlagActive) | (~flags & kMenuFlagActive);
        if (!(flags & kMenuFlagVisible)) {
            m_tray.reset();
        } else if (!m_tray) {
            createStatusItem();
        }
    }
    if (m_tray && (flags ^ m_flags) & kMenuFlagActive) {
        if (flags & kMenuFlagActive) {
            showImage(m_imgOn, QStringLiteral("statuson"));
            m_tray->setStateText(QStringLiteral("Active"));
        } else {
            showImage(m_imgOff, QStringLiteral("statusoff"));
            m_tray->setStateText(QStringLiteral("Not active"));
        }
    }
    m_flags = flags;
}

void KIVMenuObj::createStatusItem()
{
    m_tray = std::make_unique<StatusItem>();
    m_tray->setEnabled(true);
    m_tray->setToolTip(QString::fromUtf16(ProductTexts::toolTip));
    m_tray->setTitle(QString());
    m_tray->setMenu(m_menu.get());
    // Queued: the service may remove the item while its menu is open, that is from within this very call.
    connect(m_tray.get(), &StatusItem::pressed, this, &KIVMenuObj::menuTrayPressed, Qt::QueuedConnection);
    // Else it would be held to be where it was.
    connect(m_tray.get(), &StatusItem::moved, this, &KIVMenuObj::saveTrayX);
    QTimer::singleShot(m_surroundings.settling, Qt::PreciseTimer, this, &KIVMenuObj::saveTrayX);
}

void KIVMenuObj::showImage(QIcon &image, const QString &resource)
{
    if (image.isNull()) {
        image = readImageFile(m_bundle.pathForResource(resource, QStringLiteral("tiff")));
    }
    if (image.isNull()) {
        qCWarning(itemLog, "no image %s.tiff that can be read lies with the program", qPrintable(resource));
        return;
    }
    m_tray->setImage(image);
}

void KIVMenuObj::setActions(QMenu *menu, std::span<const std::uint32_t> codes)
{
    if (!menu) {
        return;
    }
    for (QAction *item : menu->actions()) {
        if (item->isSeparator()) {
            continue;
        }
        const std::uint32_t code = tagOf(*item);
        item->setEnabled(isEnabled(code, m_flags, codes));
        if (code != kMenuCmdResolution && item->menu()) {
            setActions(item->menu(), codes);
        }
    }
}

void KIVMenuObj::setActions(std::span<const std::uint32_t> codes)
{
    setActions(m_menu.get(), codes);
}

void KIVMenuObj::setEnabled(bool enabled)
{
    if (m_tray) {
        m_tray->setEnabled(enabled);
    }
}

std::optional<NSRect> KIVMenuObj::getFrame() const
{
    const std::optional<NSRect> frame = m_tray ? m_tray->frame() : std::nullopt;
    if (!frame || m_trayX == 0 || !m_surroundings.isHidden()) {
        return frame;
    }
    const std::optional<NSRect> screen = MainScreen::frame();
    return screen ? heldFrame(*frame, m_trayX, screen->size) : frame;
}

void KIVMenuObj::saveTrayX()
{
    if (!m_surroundings.isHidden()) {
        qCDebug(itemLog, "the item's place is not remembered: the session is at the console, or not known");
        return;
    }
    // The frame as it is reported: getFrame() would answer with what has been remembered before.
    const std::optional<NSRect> frame = m_tray ? m_tray->frame() : std::nullopt;
    const std::optional<NSRect> screen = MainScreen::frame();
    if (frame && screen) {
        m_trayX = trayDistance(*frame, screen->size);
        qCDebug(itemLog, "the item's place is remembered: %g from the right", static_cast<double>(m_trayX));
    }
}

void KIVMenuObj::menuTrayPressed(std::optional<NSPoint> place)
{
    if (m_guard && m_guard->isOpen()) {
        qCDebug(itemLog, "a double click: the menu stays open");
        return;
    }
    if (m_menu->isVisible() || isSystemMenuOpen()) {
        qCDebug(itemLog, "closes the menu");
        m_menu->close();
        closeSystemMenu();
        return;
    }
    const std::optional<NSRect> frame = getFrame();
    const NSPoint pressed = place ? *place : MainScreen::mouseLocation();
    const NSSize screen = MainScreen::frame().value_or(NSRect{}).size;
    // The bar is where the item really is, wherever it is held to be.
    const std::optional<NSRect> reported = m_tray ? m_tray->frame() : std::nullopt;
    const StatusBar bar = StatusBar::around(reported.value_or(NSRect{pressed, {}}));
    const MenuPlace menuPlace = place && !frame ? placeAtPress(pressed, screen, bar)
                                                : MenuPlace{menuAnchor(frame, pressed, screen, bar), bar.edge};
    const QPoint anchorPoint = MainScreen::toQt(menuPlace.anchor);
    qCDebug(itemLog, "opens the menu at (%g, %g), pressed at (%g, %g); the item's place is %s",
            static_cast<double>(menuPlace.anchor.x), static_cast<double>(menuPlace.anchor.y),
            static_cast<double>(pressed.x), static_cast<double>(pressed.y), frame ? "known" : "not known");

    auto *anchor = new AnchorWindow(anchorPoint); // Deletes itself when menuDidClose() closes it.
    anchor->show();
    QMouseEvent press(QEvent::MouseButtonPress, anchor->rect().bottomLeft(), anchorPoint, Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    setAssociatedObject(*m_menu, anchorKey, anchor);
    DoubleClickGuard guard(*m_menu, MainScreen::toQt(pressed));
    m_guard = &guard;
    popUpContextMenu(*m_menu, press, anchor, menuPlace.edge);
    if (QAction *const chosen = std::exchange(m_chosenInOpenMenu, nullptr)) {
        chosen->trigger(); // Queued, as any choice.
    }
}
