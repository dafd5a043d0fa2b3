#pragma once
#include "spreadsheet/files/xls/RecordWriter.h"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// The table of texts that cells of an .xls file name by number.
class SharedTexts {
public:
    /// Characters of one cell's text; what is longer is cut off.
    static constexpr std::size_t mostCharacters = 32'767;

    /// Counts a use. The text must live as long as the table.
    std::uint32_t number(std::string_view text);
    bool hasCut() const { return m_hasCut; }
    void write(RecordWriter& writer) const;

private:
    std::unordered_map<std::string_view, std::uint32_t> m_numbers;
    std::vector<std::string_view> m_texts;
    std::uint32_t m_uses = 0;
    bool m_hasCut = false;
};

} // namespace spreadsheet
