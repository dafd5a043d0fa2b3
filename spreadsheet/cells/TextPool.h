#pragma once
#include "spreadsheet/values/Text.h"

#include <cstddef>
#include <string_view>
#include <unordered_set>

namespace spreadsheet {

/// Texts that were typed into cells, each once: a label repeated down a column takes its bytes once.
class TextPool {
public:
    Text intern(std::string_view text);
    std::size_t bytes() const;

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
        std::size_t operator()(const Text& text) const { return (*this)(text.view()); }
    };
    struct Same {
        using is_transparent = void;
        bool operator()(const Text& a, const Text& b) const { return a.view() == b.view(); }
        bool operator()(std::string_view a, const Text& b) const { return a == b.view(); }
        bool operator()(const Text& a, std::string_view b) const { return a.view() == b; }
    };

    void sweep();

    std::unordered_set<Text, Hash, Same> m_texts;
    std::size_t m_sweepAt = 1024; ///< size at which texts that no cell holds any more are dropped
};

} // namespace spreadsheet
