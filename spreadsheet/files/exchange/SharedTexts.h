#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// Characters (UTF-16 units) that cells of workbook files hold; what is longer is cut off.
inline constexpr std::size_t mostTextCharacters = 32'767;
inline constexpr const char* longTextWarning = "超过 32,767 个字的文本只写出前面部分";

/// What a cell holds of a text that is too long for it; nothing if the text fits.
std::optional<std::string> cutText(std::string_view text);

/// The table of texts that cells of a workbook file name by number.
class SharedTexts {
public:
    /// Counts a use. The text must live as long as the table.
    std::uint32_t number(std::string_view text);
    std::uint32_t uses() const { return m_uses; }
    /// By number.
    const std::vector<std::string_view>& texts() const { return m_texts; }
    /// True if a text is longer than a cell holds.
    bool hasLonger() const { return m_hasLonger; }

private:
    std::unordered_map<std::string_view, std::uint32_t> m_numbers;
    std::vector<std::string_view> m_texts;
    std::uint32_t m_uses = 0;
    bool m_hasLonger = false;
};

} // namespace spreadsheet
