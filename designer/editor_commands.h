#pragma once
#include <QKeySequence>

#include <span>

namespace selfreport {

class frmEditor;

/// An entry of the designer's menus, or a separator (no name).
struct EditorCommand {
    const char* name;                         ///< object name of the action; null: a separator stands here
    const char* caption;                      ///< with "&" before an access key
    void (*run)(frmEditor& window) = nullptr; ///< null: the entry is there and does nothing
    const char* shortcut = "";
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

/// The toolbar's buttons. Counted from 1 with the separators Bold, Italic, Left, Middle and Right are 12, 13,
/// 15, 16 and 17.
std::span<const EditorButton> editorButtons();

} // namespace selfreport
