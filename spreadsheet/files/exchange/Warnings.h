#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// What an import or export could not carry over: Chinese sentences, each once.
class Warnings {
public:
    static constexpr std::size_t most = 200; ///< a damaged file may give occasion to thousands

    void add(const std::string& text) { count(text, 0); }
    /// A loss that is told once with its number.
    /// @param text  has "{}" where the number stands
    void count(std::string_view text, int more = 1);
    std::vector<std::string> texts() const;

private:
    struct Loss {
        std::string text;
        int count; ///< 0: the text is whole
    };
    std::vector<Loss> m_losses; ///< in the order in which they were met
};

} // namespace spreadsheet
