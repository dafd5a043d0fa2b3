#pragma once
#include "spreadsheet/values/Text.h"

#include <content_generated.h>

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// The texts of a workbook on their way into a file, each once.
class TextWriter {
public:
    /// The text's number, from 1; 0 for the empty text.
    std::uint32_t number(const Text& text);
    void finish(flatbuffers::FlatBufferBuilder& builder);

    flatbuffers::Offset<flatbuffers::Vector<std::uint8_t>> bytes;
    flatbuffers::Offset<flatbuffers::Vector<std::uint32_t>> ends;
    flatbuffers::Offset<flatbuffers::Vector<const stored::CountedText*>> counted;

private:
    std::uint32_t append(const Text& text);

    std::deque<Text> m_kept; ///< the keys below point into them
    std::unordered_map<std::string_view, std::uint32_t> m_plain;
    std::string m_bytes;
    std::vector<std::uint32_t> m_ends;
    std::vector<stored::CountedText> m_counted;
};

/// The texts of a file by their numbers.
class StoredTexts {
public:
    /// @throws ContentError
    explicit StoredTexts(const stored::Content& content);
    /// @throws ContentError if there is no such text
    const Text& operator[](std::uint64_t number) const;

private:
    std::vector<Text> m_texts; ///< the empty one first
};

} // namespace spreadsheet
