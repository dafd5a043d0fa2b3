#include "spreadsheet/functions/text/double_bytes.h"

#include "spreadsheet/values/characters.h"

#include <algorithm>
#include <array>
#include <iconv.h>

namespace spreadsheet {

namespace {

/// A converter of the C library between two encodings, which knows no locale.
class Converter {
public:
    Converter(const char* to, const char* from)
        : m_handle(iconv_open(to, from))
    {
    }
    ~Converter()
    {
        if (isOpen())
            iconv_close(m_handle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    /// Empty if the text cannot be converted whole.
    std::string converted(std::string text) const
    {
        if (!isOpen())
            return {};
        std::array<char, 16> buffer{};
        char* in = text.data();
        char* out = buffer.data();
        std::size_t inLeft = text.size();
        std::size_t outLeft = buffer.size();
        iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        const bool whole = iconv(m_handle, &in, &inLeft, &out, &outLeft) != static_cast<std::size_t>(-1);
        return whole ? std::string(buffer.data(), out) : std::string();
    }

private:
    bool isOpen() const { return m_handle != reinterpret_cast<iconv_t>(-1); }
    iconv_t m_handle;
};

// Half-width katakana and their full-width forms; a voiced letter is two half-width ones.

constexpr std::u32string_view plainHalf = U"｡｢｣､･ｦｧｨｩｪｫｬｭｮｯｰｱｲｳｴｵｶｷｸｹｺｻｼｽｾｿﾀﾁﾂﾃﾄﾅﾆﾇﾈﾉﾊﾋﾌﾍﾎﾏﾐﾑﾒﾓﾔﾕﾖﾗﾘﾙﾚﾛﾜﾝﾞﾟ";
constexpr std::u32string_view plainFull = U"。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタ"
                                          U"チツテトナニヌネノハヒフヘホマミムメモヤユヨラリルレロワン゛゜";
static_assert(plainHalf.size() == plainFull.size());

constexpr std::u32string_view voicedFull = U"ガギグゲゴザジズゼゾダヂヅデドバビブベボヴ";
constexpr std::u32string_view voicedBase = U"ｶｷｸｹｺｻｼｽｾｿﾀﾁﾂﾃﾄﾊﾋﾌﾍﾎｳ";
static_assert(voicedFull.size() == voicedBase.size());
constexpr std::u32string_view semiVoicedFull = U"パピプペポ";
constexpr std::u32string_view semiVoicedBase = U"ﾊﾋﾌﾍﾎ";

constexpr char32_t voice = U'ﾞ';
constexpr char32_t semiVoice = U'ﾟ';

std::u32string characters(std::string_view text)
{
    std::u32string result;
    for (std::size_t at = 0; at < text.size();)
        result += takeCharacter(text, at);
    return result;
}

std::optional<char32_t> counterpart(std::u32string_view from, std::u32string_view to, char32_t c)
{
    const std::size_t place = from.find(c);
    return place == from.npos ? std::nullopt : std::optional(to[place]);
}

void appendHalf(std::string& text, char32_t c)
{
    if (c >= U'！' && c <= U'～')
        return appendCharacter(text, c - U'！' + U'!');
    if (c == U'　')
        return appendCharacter(text, U' ');
    if (const auto base = counterpart(voicedFull, voicedBase, c)) {
        appendCharacter(text, *base);
        return appendCharacter(text, voice);
    }
    if (const auto base = counterpart(semiVoicedFull, semiVoicedBase, c)) {
        appendCharacter(text, *base);
        return appendCharacter(text, semiVoice);
    }
    appendCharacter(text, counterpart(plainFull, plainHalf, c).value_or(c));
}

} // namespace

int bytesOf(char32_t c)
{
    return c < 0x80 ? 1 : c > 0xFFFF ? 4 : 2;
}

std::size_t byteCount(std::string_view text)
{
    std::size_t bytes = 0;
    for (std::size_t at = 0; at < text.size();)
        bytes += static_cast<std::size_t>(bytesOf(takeCharacter(text, at)));
    return bytes;
}

std::string bytesOf(std::string_view text, std::size_t first, std::size_t count)
{
    const std::size_t end = first + std::min(count, byteCount(text));
    std::string result;
    std::size_t byte = 0;
    for (std::size_t at = 0; at < text.size() && byte < end;) {
        const char32_t c = takeCharacter(text, at);
        const std::size_t next = byte + static_cast<std::size_t>(bytesOf(c));
        if (byte >= first && next <= end)
            appendCharacter(result, c);
        else if (next > first)
            result.append(std::min(next, end) - std::max(byte, first), ' ');
        byte = next;
    }
    return result;
}

std::optional<char32_t> characterOfDoubleByte(int code)
{
    if (code < 0x8140 || code > 0xFEFE)
        return std::nullopt;
    thread_local const Converter fromGbk("UTF-8", "GBK");
    const std::string text =
        fromGbk.converted({static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)});
    if (text.empty())
        return std::nullopt;
    std::size_t at = 0;
    return takeCharacter(text, at);
}

std::optional<int> doubleByteOfCharacter(char32_t c)
{
    thread_local const Converter toGbk("GBK", "UTF-8");
    std::string text;
    appendCharacter(text, c);
    const std::string bytes = toGbk.converted(text);
    if (bytes.size() != 2)
        return std::nullopt;
    return static_cast<unsigned char>(bytes[0]) << 8 | static_cast<unsigned char>(bytes[1]);
}

std::string halfWidth(std::string_view text)
{
    std::string result;
    for (const char32_t c : characters(text))
        appendHalf(result, c);
    return result;
}

std::string fullWidth(std::string_view text)
{
    const std::u32string all = characters(text);
    std::string result;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const char32_t c = all[i];
        const char32_t next = i + 1 < all.size() ? all[i + 1] : U'\0';
        std::optional<char32_t> joined;
        if (next == voice)
            joined = counterpart(voicedBase, voicedFull, c);
        else if (next == semiVoice)
            joined = counterpart(semiVoicedBase, semiVoicedFull, c);
        i += joined.has_value();
        if (joined)
            appendCharacter(result, *joined);
        else if (c >= U'!' && c <= U'~')
            appendCharacter(result, c - U'!' + U'！');
        else
            appendCharacter(result, c == U' ' ? U'　' : counterpart(plainHalf, plainFull, c).value_or(c));
    }
    return result;
}

} // namespace spreadsheet
