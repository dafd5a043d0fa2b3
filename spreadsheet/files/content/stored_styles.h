#pragma once
#include "spreadsheet/cells/StylePool.h"
#include "spreadsheet/files/content/stored_texts.h"

#include <map>
#include <tuple>

namespace spreadsheet {

/// The looks in use on their way into a file; they are numbered in the order of their first use.
class StyleWriter {
public:
    StyleWriter(const StylePool& pool, TextWriter& texts)
        : m_pool(pool)
        , m_texts(texts)
        , m_numbers(pool.size())
    {
    }

    /// The number in the file of the pool's style `number`.
    std::uint32_t number(std::uint32_t number);
    /// Before the texts are finished.
    void finish(flatbuffers::FlatBufferBuilder& builder);

    flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<stored::Font>>> fonts;
    flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<stored::Style>>> styles;

private:
    using FontKey = std::tuple<std::uint32_t, float, int>; ///< family's text, points, flags
    std::uint32_t fontNumber(const CellFont& font);

    const StylePool& m_pool;
    TextWriter& m_texts;
    std::vector<std::uint32_t> m_numbers; ///< by number in the pool; 0: not in use
    std::vector<std::uint32_t> m_used;    ///< numbers in the pool
    std::map<FontKey, std::uint32_t> m_fonts;
    std::vector<FontKey> m_fontList;
};

/// Numbers in `pool` by numbers in the file; 0 stays 0.
/// @throws ContentError
std::vector<std::uint32_t> readStyles(const stored::Content& content, const StoredTexts& texts,
                                      StylePool& pool);

} // namespace spreadsheet
