#pragma once
#include "spreadsheet/files/xls/RecordStream.h"

#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

/// What formulas of an .xls file name by number: sheets, other files, functions of add-ins, defined names.
class XlsLinks {
public:
    void addTab(std::string name) { m_tabs.push_back(std::move(name)); }
    void addName(std::string name) { m_names.push_back(std::move(name)); }
    /// @param number  from 1
    void setName(std::size_t number, std::string name) { m_names[number - 1] = std::move(name); }
    void readBook(const XlsRecord& record);
    void readExternName(const XlsRecord& record);
    void readExternSheets(const XlsRecord& record, RecordStream& stream);

    /// "Sheet1!" or "一月:三月!"; empty for a reference whose sheet is gone. Nothing if it lies in
    /// another file or the number is wrong.
    std::optional<std::string> sheetPrefixOf(std::size_t externSheet) const;
    /// The worksheet name of a tab; null if it has none.
    const std::string* tab(std::size_t index) const;
    /// A defined name, counted from 1 as in tokens; null if the number is wrong.
    const std::string* name(std::size_t number) const;
    /// A name of an add-in or a defined name reached through a sheet; null if it lies in another file.
    const std::string* externName(std::size_t externSheet, std::size_t number) const;

private:
    enum class BookKind { own, addIn, foreign };
    struct Book {
        BookKind kind = BookKind::foreign;
        std::vector<std::string> names;
    };
    struct ExternSheet {
        std::uint16_t book;
        std::uint16_t firstTab, lastTab;
    };

    std::vector<std::string> m_tabs; ///< empty for tabs that hold no cells
    std::vector<std::string> m_names;
    std::vector<Book> m_books;
    std::vector<ExternSheet> m_externSheets;
};

} // namespace spreadsheet
