#pragma once
#include "spreadsheet/formula/CustomFunction.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// Functions that the program registers. A name that a formula calls has a number before anybody
/// registers it, so that registering reaches formulas that are already there.
class CustomFunctions {
public:
    struct Entry {
        std::string name;
        int parameterCount = 0;
        FunctionHandler handler; ///< empty: not registered, calls give #NAME?
    };

    int number(std::string_view name);
    const Entry& operator[](int number) const { return m_entries[static_cast<std::size_t>(number)]; }
    void add(std::string_view name, int parameterCount, FunctionHandler handler);
    /// Registers what the other has registered, under this one's numbers.
    void takeHandlers(const CustomFunctions& other);
    bool isRegistered(std::string_view name) const;
    int size() const { return static_cast<int>(m_entries.size()); }

private:
    std::vector<Entry> m_entries;
    std::unordered_map<std::string, int> m_byFolded;
};

} // namespace spreadsheet
