#include "platform/database/dialect/chinese_collation.h"

#include "spreadsheet/values/chinese_order.h"

#include <utf8proc.h>

namespace selfreport {

namespace {

constexpr std::uint32_t endWeight = 0;

std::uint32_t beyondAscii(std::string_view text, std::size_t& at)
{
    utf8proc_int32_t character = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data() + at),
                                         static_cast<utf8proc_ssize_t>(text.size() - at), &character);
    if (length < 1)
        return spreadsheet::brokenClass | static_cast<unsigned char>(text[at++]);
    at += static_cast<std::size_t>(length);
    return spreadsheet::characterWeight(static_cast<char32_t>(character));
}

} // namespace

std::uint32_t nextWeight(std::string_view text, std::size_t& at)
{
    if (at >= text.size())
        return endWeight;
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 128) {
        ++at;
        return spreadsheet::asciiWeights[byte];
    }
    return beyondAscii(text, at);
}

bool onlyBlanksFrom(std::string_view text, std::size_t at)
{
    while (at < text.size())
        if (nextWeight(text, at) != blankWeight)
            return false;
    return true;
}

int compareChinese(std::string_view left, std::string_view right)
{
    std::size_t atLeft = 0;
    std::size_t atRight = 0;
    for (;;) {
        const std::size_t leftBefore = atLeft;
        const std::size_t rightBefore = atRight;
        std::uint32_t ofLeft = nextWeight(left, atLeft);
        std::uint32_t ofRight = nextWeight(right, atRight);
        if (ofLeft == ofRight) {
            if (ofLeft == endWeight)
                return 0;
            continue;
        }
        // A blank differs from the end only if something follows it.
        if (ofLeft == blankWeight && onlyBlanksFrom(left, leftBefore))
            ofLeft = endWeight;
        if (ofRight == blankWeight && onlyBlanksFrom(right, rightBefore))
            ofRight = endWeight;
        if (ofLeft == ofRight)
            return 0;
        return ofLeft < ofRight ? -1 : 1;
    }
}

} // namespace selfreport
