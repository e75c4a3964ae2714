#pragma once

#include <span>

class frmMain;

enum class EntryStart { Plain, Unticked, Ticked, Disabled };

/// One row of the menu tree. Depth 0 is a heading of the menu bar; a row with deeper rows behind it is a submenu. An
/// empty caption stands for a separator.
struct MenuEntry {
    int Depth;
    const char* Name;
    const char* Caption;
    const char* Shortcut;
    EntryStart Start;
    bool WhileBusy;            ///< may run while a load is under way
    void (*Handler)(frmMain&); ///< null for headings, submenus and separators
};

/// The whole menu tree, in order.
[[nodiscard]] std::span<const MenuEntry> MenuTable();
