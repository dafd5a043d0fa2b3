#pragma once
#include <QKeySequence>

#include <span>

class QMenu;

namespace selfreport {

class frmEditor;

struct EditorMenu;

/// An entry of the designer's menus, a menu below it, entries from a table, or a separator (none of them, but
/// a caption for the group behind it).
struct EditorCommand {
    const char* name = nullptr;               ///< object name of the action
    const char* caption = nullptr;            ///< behind a tab: the key by which the grid does it itself
    void (*run)(frmEditor& window) = nullptr; ///< null: the entry is there and does nothing
    const char* shortcut = "";                ///< the menu shows the first of several, parted by "; "
    const EditorMenu* submenu = nullptr;
    bool whileTyping = false; ///< sees to an entry that is not finished itself
    void (*addsMore)(frmEditor& window, QMenu& menu) = nullptr; ///< stands for entries that a table gives
};

struct EditorMenu {
    const char* name;
    const char* caption;
    std::span<const EditorCommand> commands;
};

/// The menus in their order, the given entries first, further ones behind a last separator.
std::span<const EditorMenu> editorMenus();

/// A button of the toolbar, or a separator (no key).
struct EditorButton {
    const char* key; ///< object name
    const char* tooltip;
    const char* icon;    ///< file name without suffix
    const char* command; ///< object name of the menu entry that it works as; null: `run`
    void (*run)(frmEditor& window) = nullptr;
    bool checkable = false;
};

/// The toolbar's buttons, further ones behind a last separator. Counted from 1 with the separators Bold,
/// Italic, Left, Middle and Right are 12, 13, 15, 16 and 17.
std::span<const EditorButton> editorButtons();

} // namespace selfreport
