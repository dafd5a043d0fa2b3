#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// Names may stand for formulas with names this deep; deeper ones go in circles.
inline constexpr int maxNameDepth = 32;

/// Defined names of a workbook. Every name that a formula mentions has a number, defined or not, so
/// that defining it later reaches the formulas that are already there.
class NameTable {
public:
    struct Entry {
        std::string name;          ///< as it was first written
        std::uint32_t formula = 0; ///< in the formula pool, relative to A1; 0: not defined
        int sheet = 0;             ///< id of the only sheet that a file has it for; here all know it
    };

    /// The number of a name (letter case ignored), given to it if it is new.
    int number(std::string_view name);
    /// -1 if no formula mentions it and it is not defined.
    int find(std::string_view name) const;
    const Entry& operator[](int number) const { return m_entries[static_cast<std::size_t>(number)]; }
    int size() const { return static_cast<int>(m_entries.size()); }
    void define(int number, std::uint32_t formula, int sheet = 0)
    {
        m_entries[static_cast<std::size_t>(number)].formula = formula;
        m_entries[static_cast<std::size_t>(number)].sheet = sheet;
    }

    /// Letters, digits, "_", "." and anything beyond ASCII, not beginning with a digit, and neither a
    /// cell name nor TRUE or FALSE.
    static bool isValid(std::string_view name);

private:
    std::vector<Entry> m_entries;
    std::unordered_map<std::string, int> m_byFolded;
};

} // namespace spreadsheet
