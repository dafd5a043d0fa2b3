#pragma once
#include <algorithm>
#include <string>
#include <vector>

namespace spreadsheet {

/// What an import or export could not carry over: Chinese sentences, each once.
class Warnings {
public:
    static constexpr std::size_t most = 200; ///< a damaged file may give occasion to thousands

    void add(const std::string& text)
    {
        if (m_texts.size() < most && std::ranges::find(m_texts, text) == m_texts.end())
            m_texts.push_back(text);
    }
    const std::vector<std::string>& texts() const { return m_texts; }

private:
    std::vector<std::string> m_texts;
};

} // namespace spreadsheet
