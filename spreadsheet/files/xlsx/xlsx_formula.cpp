#include "spreadsheet/files/xlsx/xlsx_formula.h"

#include "spreadsheet/files/exchange/function_numbers.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>

namespace spreadsheet {

namespace {

/// Functions that came with the format itself.
constexpr std::array<std::string_view, 12> nativeFunctions{
    "AVERAGEIF",        "AVERAGEIFS", "COUNTIFS",     "CUBEKPIMEMBER", "CUBEMEMBER", "CUBEMEMBERPROPERTY",
    "CUBERANKEDMEMBER", "CUBESET",    "CUBESETCOUNT", "CUBEVALUE",     "IFERROR",    "SUMIFS"};

bool needsPrefix(std::string_view function)
{
    const std::string name = ascii::upper(function);
    return findFunction(name) && !xlsFunction(std::string_view(name)) && !isXlsAddInFunction(name) &&
           std::ranges::find(nativeFunctions, name) == nativeFunctions.end();
}

std::string asciiBlanks(std::string_view text)
{
    constexpr std::string_view wideBlank = "\u3000";
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const bool isWide = text.substr(at).starts_with(wideBlank);
        result += isWide ? ' ' : text[at];
        at += isWide ? wideBlank.size() : 1;
    }
    return result;
}

void appendToken(const Token& token, std::string& result)
{
    switch (token.kind) {
    case Token::Kind::open:
        result += '(';
        break;
    case Token::Kind::close:
        result += ')';
        break;
    case Token::Kind::comma:
        result += ',';
        break;
    case Token::Kind::semicolon:
        result += ';';
        break;
    case Token::Kind::function:
        result.append(needsPrefix(token.text) ? laterFunctionPrefix(token.text) : "").append(token.text) +=
            '(';
        break;
    default:
        result += token.text;
    }
}

} // namespace

std::string portableFormula(std::string_view text, CellAddress base, const SheetResolver& sheetId)
{
    LexedFormula lexed;
    if (lexFormula(text, base, sheetId, lexed))
        return std::string(text);
    std::string result;
    std::size_t done = 0;
    for (const Token& token : lexed.tokens) {
        // Between a function's name and its bracket blanks may stand; the token's text ends with the name.
        std::size_t gap = done;
        if (gap < token.position)
            result += asciiBlanks(text.substr(gap, token.position - gap));
        appendToken(token, result);
        done = token.position + token.text.size();
        if (token.kind != Token::Kind::function)
            continue;
        constexpr std::string_view wideBracket = "（";
        const std::size_t bracket = std::min(text.find('(', done), text.find(wideBracket, done));
        done = bracket + (text[bracket] == '(' ? 1 : wideBracket.size());
    }
    return result;
}

std::string plainFormula(std::string_view text)
{
    static constexpr std::array<std::string_view, 3> prefixes{"_xlfn.", "_xlws.", "_xludf."};
    if (text.find("_x") == std::string_view::npos)
        return std::string(text);
    std::string result;
    bool inText = false;
    for (std::size_t at = 0; at < text.size();) {
        inText ^= text[at] == '"';
        const auto prefix =
            std::ranges::find_if(prefixes, [rest = text.substr(at)](std::string_view candidate) {
                return rest.starts_with(candidate);
            });
        if (!inText && prefix != prefixes.end())
            at += prefix->size();
        else
            result += text[at++];
    }
    return result;
}

} // namespace spreadsheet
