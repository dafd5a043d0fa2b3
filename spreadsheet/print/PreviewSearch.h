#pragma once
#include <QRect>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace spreadsheet {

class PreviewPages;

/// Searches a text in pages. A hit is a cell that shows it, or a part of header or footer, on each page on
/// which it stands. Pages are read when they are asked for: a report may have thousands. Once the pages have
/// changed, the hits are those of the new ones.
class PreviewSearch {
public:
    struct Hit {
        int page = 0;  ///< from 1; 0: none
        int index = 0; ///< on the page
        friend bool operator==(const Hit&, const Hit&) = default;
    };

    explicit PreviewSearch(const PreviewPages& pages)
        : m_pages(pages)
    {
    }

    const QString& text() const { return m_text; }
    /// Other than the one in use: there is no current hit until `go`. Empty: nothing is searched.
    void setText(const QString& text);

    /// Places of the hits on a page, in twips from the paper's corner, in the order of reading.
    const std::vector<QRect>& on(int page);
    const Hit& current();
    /// Goes from the current hit to the next or former one, round the report's ends; without one to the
    /// nearest from a page on, itself included. False if there are no hits.
    bool go(bool isForward, int page);

    /// Reads on, for some milliseconds, the pages that have not been read; false if all have been.
    bool countOn();
    /// Hits on all pages; nothing before they have been read.
    std::optional<int> total();
    /// Place of the current hit among all, from 1; nothing before the pages in front of it have been read.
    std::optional<int> ordinal();

private:
    void followPages();
    std::optional<int> before(int page) const; ///< hits on the pages in front of it

    const PreviewPages& m_pages;
    QString m_text;
    Hit m_current;
    std::uint64_t m_version = 0;
    std::vector<std::optional<std::vector<QRect>>> m_hits; ///< by page
    std::size_t m_counted = 0;                             ///< pages that have been read in sequence
};

} // namespace spreadsheet
