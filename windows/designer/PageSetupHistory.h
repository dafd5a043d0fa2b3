#pragma once
#include "reports/page_setup.h"
#include "spreadsheet/cells/SheetSettings.h"

#include <optional>
#include <vector>

namespace selfreport {

/// What the open report's row has held of its page set-up, and what the sheets showed of it then: undo gives
/// the sheets a former one, which the row does not know of.
class PageSetupHistory {
public:
    /// The row was loaded. Forgets what was before.
    void begin(StoredPageSetup inRow, const spreadsheet::PrintSettings& shown);
    void clear() { m_known.clear(); }

    /// The row was given another one, which the sheets show.
    void note(StoredPageSetup inRow, const spreadsheet::PrintSettings& shown);

    /// Whether the sheets show the margins and the orientation that the row gave them.
    bool areMarginsOfRow(const spreadsheet::PrintSettings& shown) const;
    /// Whether they show all that the row holds.
    bool isOfRow(const spreadsheet::PrintSettings& shown) const;
    /// What the row held when the sheets showed that; nothing if they never did.
    std::optional<StoredPageSetup> former(const spreadsheet::PrintSettings& shown) const;
    /// What the row holds, with what the sheets show otherwise than it gave them.
    StoredPageSetup withShown(StoredPageSetup inRow, const spreadsheet::PrintSettings& shown) const;

private:
    struct Known {
        StoredPageSetup inRow;
        spreadsheet::PrintSettings shown;
    };
    std::vector<Known> m_known; ///< the present one last
};

} // namespace selfreport
