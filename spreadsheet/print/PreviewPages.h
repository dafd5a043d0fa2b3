#pragma once
#include "spreadsheet/print/PageLayout.h"

#include <QPixmap>
#include <QString>

#include <memory>
#include <optional>

namespace spreadsheet {

class PageText;
class Workbook;

/// The pages of a sheet for those who show them: laid out when they are asked for, anew once the workbook has
/// changed. Without a workbook there are none.
class PreviewPages {
public:
    PreviewPages();
    ~PreviewPages();
    PreviewPages(const PreviewPages&) = delete;
    PreviewPages& operator=(const PreviewPages&) = delete;

    /// The workbook must outlive the pages or another attachment.
    /// @param sheet  from 1
    void attach(const Workbook& workbook, int sheet, PageRequest request);
    void setRequest(PageRequest request); ///< other paper, cells or stamp
    /// The next question will lay the pages out again.
    bool areOld() const;

    /// Null if the margins leave no room for cells, or there is no such sheet.
    const PageLayout* layout() const;
    /// Why there is no layout, as one Chinese sentence; empty if there is one.
    QString problem() const;
    int count() const;             ///< at least 1
    std::uint64_t version() const; ///< another number once pages may look otherwise
    /// The sheet whose pages they are. There must be a layout.
    const Sheet& sheet() const;

    /// A page as it will be printed.
    /// @param size   in pixels of a screen with `ratio` dots for each
    QPixmap picture(int page, QSize size, double ratio) const;

private:
    const Workbook* m_workbook = nullptr;
    int m_sheet = 1;
    PageRequest m_request;
    mutable std::unique_ptr<PageLayout> m_layout; ///< of m_revision
    mutable std::optional<std::uint64_t> m_revision;
    mutable QString m_problem;
    mutable std::uint64_t m_version = 0;
    std::unique_ptr<PageText> m_text;
};

} // namespace spreadsheet
