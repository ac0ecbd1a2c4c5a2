#pragma once

#include "menu/KIVDspRes.h"
#include "menu/LoginSession.h"
#include "menu/opening/DoubleClickGuard.h"
#include "platform/Bundle.h"
#include "platform/Geometry.h"
#include "platform/StatusItem.h"

#include <Carbon/Carbon.h>
#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QPointer>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

/// What the menu object asks of the session it runs in.
struct MenuSurroundings {
    /// How long the status item gets to find its place after its creation.
    std::chrono::milliseconds settling{10'000};
    /// Whether this session is away from the console, so that its screen may change its size.
    bool (*isHidden)() = is_hidden;
};

/// The one status item and the menu that drops from it: shows and removes the item and switches its image as the
/// service's flags say, enables the entries that the service allows, and hands every chosen entry to the menu
/// procedure. Entries of the resolution submenu it carries out itself. Main thread only.
class KIVMenuObj final : public QObject
{
    Q_OBJECT

public:
    /// Carries a chosen command (MenuCode) out.
    using MenuProc = void (*)(KIVMenuObj *menu, std::uint32_t code);

    /// Builds the menu, without a status item. The images come from `bundle`, which must outlive the object.
    explicit KIVMenuObj(const Bundle &bundle = Bundle::main(), const MenuSurroundings &surroundings = {});
    ~KIVMenuObj() override;

    /// Appends a top-level entry, with a separator before it if `sep`. `key` is its key equivalent, empty for none.
    /// The result belongs to the menu.
    QAction *addMenuItem(const QString &title, const QString &key, std::uint32_t code, bool sep, bool enable,
                         bool check);
    /// The same in the submenu of `parent`, which is created on first use. Null when `parent` is.
    QAction *addSubItem(QAction *parent, const QString &title, const QString &key, std::uint32_t code, bool sep,
                        bool enable, bool check);

    /// Refills the resolution submenu with the sizes of the main display, and checks the current one. It has only the
    /// placeholder while its own entry is disabled, and where the display has no list of modes.
    void updResolutions();
    /// Fills the submenu of this entry, with the modes of a display (null for none) and its current size.
    void fillResolutions(QAction &resolution, CFArrayRef modes, QSize current);

    /// The action of every entry.
    void onMenuAction(QAction *sender);
    /// The menu is about to show.
    void menuWillOpen(QMenu *menu);
    /// The menu has left the screen; the chosen entry's action, if any, comes afterwards.
    void menuDidClose(QMenu *menu);

    void setMenuProc(MenuProc proc);
    [[nodiscard]] MenuProc getMenuProc() const;

    /// The service's flag word (MenuFlag). The two entries that follow kMenuFlagActive do so at the next setActions.
    void setFlags(std::uint32_t flags);

    /// Enables and disables every entry of `menu` and its submenus, the resolution submenu excepted.
    void setActions(QMenu *menu, std::span<const std::uint32_t> codes);
    /// The same for the whole menu.
    void setActions(std::span<const std::uint32_t> codes);

    /// Enables or disables the status item's button.
    void setEnabled(bool enabled);

    /// The status item's frame on screen; in a session off the console at its remembered distance from the screen's
    /// right edge. Nothing when there is no item or its place is unknown.
    [[nodiscard]] std::optional<NSRect> getFrame() const;

    /// In a session off the console, remembers the item's distance from the screen's right edge.
    void saveTrayX();
    /// That distance in points; 0 when none has been remembered.
    [[nodiscard]] float trayX() const { return m_trayX; }

    /// Opens the menu at the status item and returns when it has closed; closes it when it is open, but not by the
    /// second press of a double click. `place` is where the item was pressed; nothing when that is the mouse's
    /// position.
    void menuTrayPressed(std::optional<NSPoint> place = std::nullopt);

    [[nodiscard]] QMenu *menu() const { return m_menu.get(); }
    /// Null while the item is not shown.
    [[nodiscard]] StatusItem *statusItem() const { return m_tray.get(); }

private:
    QAction *newItem(QMenu &menu, const QString &title, const QString &key, std::uint32_t code, bool sep, bool enable,
                     bool check);
    void createStatusItem();
    /// Sets the button's image, loading it first if that has not been done; a failed load leaves the old image.
    void showImage(QIcon &image, const QString &resource);
    /// Switches the main display to the size at this index of m_dmods; one that is out of range is ignored.
    void switchResolution(std::int32_t index);
    [[nodiscard]] QAction *itemWithTag(std::uint32_t code) const;

    const Bundle &m_bundle;
    const MenuSurroundings m_surroundings;

    // Destroyed in the reverse of this order, but for the item, which the destructor destroys first.
    std::unique_ptr<StatusItem> m_tray;
    MenuProc m_proc = nullptr;
    std::unique_ptr<QMenu> m_menu;
    std::uint32_t m_flags = 0;
    QIcon m_imgOn;
    QIcon m_imgOff;
    std::optional<std::vector<KIVDspRes>> m_dmods; ///< In menu order; nothing while the placeholder stands there.
    float m_trayX = 0;
    QPointer<QAction> m_chosenInOpenMenu;
    QPointer<DoubleClickGuard> m_guard; ///< While the menu is open.
};
