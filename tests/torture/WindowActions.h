#pragma once
#include "tests/torture/SavedReports.h"

#include <functional>
#include <string>
#include <vector>

namespace selfreport::torture {

/// A ledger with report 1, "甲表", as a window has loaded it.
struct OpenedReport : SavedReports {
    /// Every row with its first cell, every menu item, and header and top margin where they stand:
    /// "1甲表:旧 RSelf1甲表 1{新页眉,0.6} ".
    std::string everything() const;
    /// The first words of the boxes that were shown, parted by "|"; "" without one.
    std::string told() const;
};

/// What a window does with the database.
struct WindowAction {
    const char* name;
    /// What came of it if no box tells: "" for nothing.
    std::function<std::string(OpenedReport&)> act;
};

const std::vector<WindowAction>& windowActions();

/// Something that another user does meanwhile. False if the rows are locked: he waits.
bool otherUserDoes(const OpenedReport& reports, const std::string& what);

} // namespace selfreport::torture
