#pragma once
#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace spreadsheet {

/// What an import or export could not carry over: Chinese sentences, each once.
class Warnings {
public:
    static constexpr std::size_t most = 200; ///< a damaged file may give occasion to thousands

    void add(const std::string& text) { count(text, 0); }
    /// A loss that is told once with its number.
    /// @param text  has "{}" where the number stands
    void count(std::string_view text, int more = 1)
    {
        const auto found = std::ranges::find(m_losses, text, &Loss::text);
        if (found != m_losses.end())
            found->count += more;
        else if (m_losses.size() < most)
            m_losses.push_back({std::string(text), more});
    }
    std::vector<std::string> texts() const
    {
        std::vector<std::string> texts;
        for (const Loss& loss : m_losses) {
            const std::size_t place = loss.count > 0 ? loss.text.find("{}") : std::string::npos;
            texts.push_back(loss.text);
            if (place != std::string::npos)
                texts.back().replace(place, 2, std::to_string(loss.count));
        }
        return texts;
    }

private:
    struct Loss {
        std::string text;
        int count; ///< 0: the text is whole
    };
    std::vector<Loss> m_losses; ///< in the order in which they were met
};

} // namespace spreadsheet
