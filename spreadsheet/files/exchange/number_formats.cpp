#include "spreadsheet/files/exchange/number_formats.h"

#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/display/number_format_code.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>

namespace spreadsheet {

// A style of ours has a type, and only beyond that a code; files know codes alone. A code is read by the
// letters that it shows, not compared as a whole, because every program spells the same format in its own
// way. If our type would write another code than was read, the code is kept beside it, so that nothing is
// lost on the way back.

namespace {

struct BuiltIn {
    int number;
    std::string_view code;
};

/// Numbers 5 to 8 and 41 to 44 are amounts in the currency of the reader's country; ours is China.
constexpr std::array builtIns{
    BuiltIn{0, "General"},
    BuiltIn{1, "0"},
    BuiltIn{2, "0.00"},
    BuiltIn{3, "#,##0"},
    BuiltIn{4, "#,##0.00"},
    BuiltIn{5, R"("￥"#,##0;"￥"-#,##0)"},
    BuiltIn{6, R"("￥"#,##0;[Red]"￥"-#,##0)"},
    BuiltIn{7, R"("￥"#,##0.00;"￥"-#,##0.00)"},
    BuiltIn{8, R"("￥"#,##0.00;[Red]"￥"-#,##0.00)"},
    BuiltIn{9, "0%"},
    BuiltIn{10, "0.00%"},
    BuiltIn{11, "0.00E+00"},
    BuiltIn{12, "# ?/?"},
    BuiltIn{13, "# ?\?/?\?"},
    BuiltIn{14, "yyyy/m/d"},
    BuiltIn{15, "d-mmm-yy"},
    BuiltIn{16, "d-mmm"},
    BuiltIn{17, "mmm-yy"},
    BuiltIn{18, "h:mm AM/PM"},
    BuiltIn{19, "h:mm:ss AM/PM"},
    BuiltIn{20, "h:mm"},
    BuiltIn{21, "h:mm:ss"},
    BuiltIn{22, "yyyy/m/d h:mm"},
    BuiltIn{27, R"(yyyy"年"m"月")"},
    BuiltIn{28, R"(m"月"d"日")"},
    BuiltIn{29, R"(m"月"d"日")"},
    BuiltIn{30, "m-d-yy"},
    BuiltIn{31, R"(yyyy"年"m"月"d"日")"},
    BuiltIn{32, R"(h"时"mm"分")"},
    BuiltIn{33, R"(h"时"mm"分"ss"秒")"},
    BuiltIn{34, R"(上午/下午h"时"mm"分")"},
    BuiltIn{35, R"(上午/下午h"时"mm"分"ss"秒")"},
    BuiltIn{36, R"(yyyy"年"m"月")"},
    BuiltIn{37, "#,##0 ;-#,##0 "},
    BuiltIn{38, "#,##0 ;[Red]-#,##0 "},
    BuiltIn{39, "#,##0.00 ;-#,##0.00 "},
    BuiltIn{40, "#,##0.00 ;[Red]-#,##0.00 "},
    BuiltIn{41, R"(_ * #,##0_ ;_ * -#,##0_ ;_ * "-"_ ;_ @_ )"},
    BuiltIn{42, R"(_ "￥"* #,##0_ ;_ "￥"* -#,##0_ ;_ "￥"* "-"_ ;_ @_ )"},
    BuiltIn{43, R"(_ * #,##0.00_ ;_ * -#,##0.00_ ;_ * "-"??_ ;_ @_ )"},
    BuiltIn{44, R"(_ "￥"* #,##0.00_ ;_ "￥"* -#,##0.00_ ;_ "￥"* "-"??_ ;_ @_ )"},
    BuiltIn{45, "mm:ss"},
    BuiltIn{46, "[h]:mm:ss"},
    BuiltIn{47, "mm:ss.0"},
    BuiltIn{48, "##0.0E+0"},
    BuiltIn{49, "@"},
    BuiltIn{50, R"(yyyy"年"m"月")"},
    BuiltIn{51, R"(m"月"d"日")"},
    BuiltIn{52, R"(yyyy"年"m"月")"},
    BuiltIn{53, R"(m"月"d"日")"},
    BuiltIn{54, R"(m"月"d"日")"},
    BuiltIn{55, R"(上午/下午h"时"mm"分")"},
    BuiltIn{56, R"(上午/下午h"时"mm"分"ss"秒")"},
    BuiltIn{57, R"(yyyy"年"m"月")"},
    BuiltIn{58, R"(m"月"d"日")"},
};

/// Those that mean another thing in an American file.
constexpr std::array americanBuiltIns{
    BuiltIn{14, "m/d/yyyy"},
    BuiltIn{22, "m/d/yyyy h:mm"},
    BuiltIn{37, "#,##0_);(#,##0)"},
    BuiltIn{38, "#,##0_);[Red](#,##0)"},
    BuiltIn{39, "#,##0.00_);(#,##0.00)"},
    BuiltIn{40, "#,##0.00_);[Red](#,##0.00)"},
};

constexpr std::string_view general = "General";

/// Languages that are none: dates and times are shown as the computer's user has them.
bool namesUsersOwn(std::string_view language)
{
    static constexpr std::string_view names[] = {"f800", "f400", "x-sysdate", "x-systime"};
    return std::ranges::find(names, ascii::lower(language)) != std::end(names);
}

/// Spellings of one code that differ by program: "yyyy\-mm\-dd;@", "[$-804]yyyy-mm-dd".
std::string plainSpelling(std::string_view code)
{
    std::string plain;
    for (std::size_t i = 0; i < code.size(); ++i) {
        if (code.substr(i).starts_with("[$-")) {
            const std::size_t end = code.find(']', i);
            if (end == std::string_view::npos)
                break;
            if (namesUsersOwn(code.substr(i + 3, end - i - 3)))
                return std::string(code);
            i = end;
        } else if (code[i] == '\\' && i + 1 < code.size() && std::string_view("-/: ").find(code[i + 1]) < 4) {
            continue;
        } else {
            plain += code[i];
        }
    }
    if (plain.ends_with(";@"))
        plain.resize(plain.size() - 2);
    return plain;
}

/// What the letters of a code's first section say; quoted texts, escapes and brackets do not count.
struct Traits {
    bool day = false, time = false, percent = false, exponent = false, currency = false, digits = false;
    bool month = false;
};

Traits traitsOf(std::string_view code)
{
    Traits traits;
    for (std::size_t i = 0; i < code.size() && code[i] != ';'; ++i) {
        const std::string_view rest = code.substr(i);
        const char c = ascii::lower(code[i]);
        if (rest.starts_with("￥") || rest.starts_with("¥") || rest.starts_with("[$¥") ||
            rest.starts_with("[$￥") || rest.starts_with("$") || rest.starts_with("[$$"))
            traits.currency = true;
        if (rest.starts_with("[h") || rest.starts_with("[m") || rest.starts_with("[s")) {
            traits.time = true;
        } else if (code[i] == '"' || code[i] == '[') {
            const std::size_t end = code.find(code[i] == '"' ? '"' : ']', i + 1);
            const std::string_view inside =
                code.substr(i + 1, end == std::string_view::npos ? end : end - i - 1);
            traits.currency |= inside == "￥" || inside == "¥" || inside == "$";
            i = end == std::string_view::npos ? code.size() : end;
        } else if (code[i] == '\\' || code[i] == '_' || code[i] == '*') {
            ++i;
        } else if (rest.starts_with(general)) {
            i += general.size() - 1;
        } else if (code[i] == 'E' && rest.size() > 1 && (rest[1] == '+' || rest[1] == '-')) {
            traits.exponent = true;
        } else {
            traits.day |= c == 'y' || c == 'd';
            traits.month |= c == 'm';
            traits.time |= c == 'h' || c == 's';
            traits.percent |= code[i] == '%';
            traits.digits |= code[i] == '0' || code[i] == '#' || code[i] == '?';
        }
    }
    return traits;
}

CellType typeOf(const Traits& traits)
{
    if (traits.day || (traits.month && !traits.time))
        return CellType::date;
    if (traits.time)
        return CellType::time;
    if (traits.percent)
        return CellType::percent;
    if (traits.exponent)
        return CellType::scientific;
    if (!traits.digits)
        return CellType::edit;
    return traits.currency ? CellType::currency : CellType::number;
}

/// The type whose code it is letter for letter.
std::optional<CellType> typeWithCode(std::string_view code)
{
    const auto found = std::ranges::find_if(cellTypes(), [&](const CellTypeRow& row) {
        return row.formatCode && !row.takesDecimals && row.formatCode({}) == code;
    });
    return found == cellTypes().end() ? std::nullopt : std::optional(found->type);
}

/// Digits behind the point of a code's first section, at most 15.
std::uint8_t decimalsOf(std::string_view code)
{
    const std::size_t point = code.substr(0, code.find(';')).find('.');
    if (point == std::string_view::npos)
        return 0;
    const std::size_t end = std::min(code.find_first_not_of("0#?", point + 1), code.size());
    return static_cast<std::uint8_t>(std::min<std::size_t>(end - point - 1, 15));
}

/// What stands in a file for a piece such as "[Red]" of a code.
std::string exportedBracket(const std::string& piece, const std::string& code, Warnings& warnings)
{
    if (piece == "[万元]") {
        warnings.add("数字格式“" + code + "”的万元显示没有写出，文件中的数按元显示");
        return {};
    }
    if (piece == "[人民币大写]") {
        warnings.add("数字格式“" + code + "”的人民币大写写为中文大写数字，没有元角分");
        return "[DBNum2][$-804]General";
    }
    if (!piece.ends_with(']'))
        return piece;
    return "[" + std::string(englishColourName(std::string_view(piece).substr(1, piece.size() - 2))) + "]";
}

} // namespace

std::string_view builtInFormatCode(int number, FileCountry country)
{
    const auto american = std::ranges::find(americanBuiltIns, number, &BuiltIn::number);
    if (country == FileCountry::america && american != americanBuiltIns.end())
        return american->code;
    const auto found = std::ranges::find(builtIns, number, &BuiltIn::number);
    return found == builtIns.end() ? general : found->code;
}

std::optional<int> builtInFormatNumber(std::string_view code)
{
    const auto found = std::ranges::find(builtIns, code, &BuiltIn::code);
    // From 5 on some numbers mean another thing in another country.
    const bool same =
        found != builtIns.end() &&
        (found->number < 5 || (found->number >= 9 && found->number <= 11) || found->number == 49);
    return same ? std::optional(found->number) : std::nullopt;
}

void applyFormatCode(std::string_view code, CellStyle& style)
{
    style.type = CellType::edit;
    style.numberFormat = {};
    const std::string plain = plainSpelling(code);
    if (plain.empty() || plain == general || plain == "GENERAL" || plain == "general")
        return;
    style.type = typeWithCode(plain).value_or(typeOf(traitsOf(plain)));
    if (cellTypeRow(style.type).takesDecimals)
        style.decimals = decimalsOf(plain);
    if (formatCodeOf(style) != plain)
        style.numberFormat = Text(code);
}

std::string formatCodeOf(const CellStyle& style)
{
    if (!style.numberFormat.empty())
        return std::string(style.numberFormat.view());
    const std::string code = formatCodeOfType(style);
    return code.empty() ? std::string(general) : code;
}

std::string exportedFormatCode(const CellStyle& style, Warnings& warnings)
{
    const std::string code = formatCodeOf(style);
    std::string exported;
    for (std::size_t i = 0; i < code.size();) {
        const bool isEscape = code[i] == '\\' || code[i] == '!' || code[i] == '_' || code[i] == '*';
        std::size_t size = isEscape ? 2 : 1;
        if (code[i] == '"' || code[i] == '[') {
            const std::size_t end = code.find(code[i] == '"' ? '"' : ']', i + 1);
            size = end == code.npos ? end : end + 1 - i;
        }
        const std::string piece = code.substr(i, size);
        exported += code[i] == '[' ? exportedBracket(piece, code, warnings) : piece;
        i += piece.size();
    }
    return exported;
}

} // namespace spreadsheet
