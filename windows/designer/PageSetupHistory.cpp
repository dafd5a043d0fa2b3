#include "windows/designer/PageSetupHistory.h"

#include <algorithm>
#include <utility>

namespace selfreport {

namespace {

bool haveSameMargins(const spreadsheet::PrintSettings& a, const spreadsheet::PrintSettings& b)
{
    return a.marginTop == b.marginTop && a.marginBottom == b.marginBottom && a.marginLeft == b.marginLeft &&
           a.marginRight == b.marginRight && a.landscape == b.landscape;
}

bool haveSamePageSetup(const spreadsheet::PrintSettings& a, const spreadsheet::PrintSettings& b)
{
    return haveSameMargins(a, b) && a.header == b.header && a.footer == b.footer;
}

} // namespace

void PageSetupHistory::begin(StoredPageSetup inRow, const spreadsheet::PrintSettings& shown)
{
    clear();
    note(std::move(inRow), shown);
}

void PageSetupHistory::note(StoredPageSetup inRow, const spreadsheet::PrintSettings& shown)
{
    m_known.push_back({std::move(inRow), shown});
}

bool PageSetupHistory::areMarginsOfRow(const spreadsheet::PrintSettings& shown) const
{
    return m_known.empty() || haveSameMargins(m_known.back().shown, shown);
}

bool PageSetupHistory::isOfRow(const spreadsheet::PrintSettings& shown) const
{
    return m_known.empty() || haveSamePageSetup(m_known.back().shown, shown);
}

std::optional<StoredPageSetup> PageSetupHistory::former(const spreadsheet::PrintSettings& shown) const
{
    const auto last = std::find_if(m_known.rbegin(), m_known.rend(),
                                   [&](const Known& known) { return haveSamePageSetup(known.shown, shown); });
    return last == m_known.rend() ? std::nullopt : std::optional(last->inRow);
}

StoredPageSetup PageSetupHistory::withShown(StoredPageSetup inRow,
                                            const spreadsheet::PrintSettings& shown) const
{
    const auto inches = [](int twips) { return static_cast<double>(twips) / spreadsheet::twipsPerInch; };
    const spreadsheet::PrintSettings& given = m_known.back().shown;
    if (!haveSameMargins(given, shown)) {
        inRow.top = inches(shown.marginTop);
        inRow.bottom = inches(shown.marginBottom);
        inRow.left = inches(shown.marginLeft);
        inRow.right = inches(shown.marginRight);
        inRow.direction = shown.landscape ? 0 : 1;
    }
    if (given.header != shown.header)
        inRow.header = shown.header;
    if (given.footer != shown.footer)
        inRow.footer = shown.footer;
    return inRow;
}

} // namespace selfreport
