#include "platform/database/dialect/code_page.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <iconv.h>
#include <iterator>

namespace selfreport {

namespace {

/// One conversion to GB18030; opening is dear, so each thread keeps one.
class ToGb18030 {
public:
    explicit ToGb18030(const char* from)
        : m_handle(iconv_open("GB18030", from))
    {
    }
    ~ToGb18030()
    {
        if (isOpen())
            iconv_close(m_handle);
    }
    ToGb18030(const ToGb18030&) = delete;
    ToGb18030& operator=(const ToGb18030&) = delete;

    bool isOpen() const { return m_handle != std::bit_cast<iconv_t>(std::intptr_t{-1}); }

    /// Advances over `input`; what does not fit or is no text stops it. Returns the bytes written.
    std::size_t convert(std::string_view& input, char* output, std::size_t room)
    {
        char* from = const_cast<char*>(input.data()); // the interface is older than const
        std::size_t left = input.size();
        const std::size_t before = room;
        iconv(m_handle, &from, &left, &output, &room);
        input.remove_prefix(input.size() - left);
        return before - room;
    }

private:
    iconv_t m_handle;
};

} // namespace

std::size_t codePageLength(std::string_view text)
{
    const auto beyondAscii =
        std::ranges::find_if(text, [](char letter) { return static_cast<unsigned char>(letter) >= 0x80; });
    auto length = static_cast<std::size_t>(beyondAscii - text.begin());
    text.remove_prefix(length);
    if (text.empty())
        return length;
    thread_local ToGb18030 converter("UTF-8");
    if (!converter.isOpen())
        return length + text.size(); // never too short: UTF-8 takes no less than GBK
    std::array<char, 4096> output;
    while (!text.empty()) {
        const std::size_t left = text.size();
        length += converter.convert(text, output.data(), output.size());
        if (text.size() == left) {
            text.remove_prefix(1);
            ++length;
        }
    }
    return length;
}

} // namespace selfreport
