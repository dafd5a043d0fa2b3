#include "tools/sheet_eval/answer.h"

#include "tools/sheet_eval/SheetCase.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <ostream>

namespace spreadsheet {

namespace {

using Json = nlohmann::json;

/// Bytes that are no UTF-8 become U+FFFD.
std::string jsonText(std::string_view text)
{
    return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// The shortest digits that read as the same number.
std::string digitsOf(double number)
{
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, number == 0 ? 0.0 : number).ptr;
    return {buffer, end};
}

std::string valueObject(const Value& value)
{
    switch (value.kind()) {
    case ValueKind::number:
        return R"({"t":"n","v":)" + digitsOf(value.number()) + '}';
    case ValueKind::boolean:
        return std::string(R"({"t":"b","v":)") + (value.boolean() ? "true}" : "false}");
    case ValueKind::error:
        return R"({"t":"e","v":")" + std::string(errorText(value.error())) + "\"}";
    case ValueKind::text:
        return R"({"t":"s","v":)" + jsonText(value.textView()) + '}';
    case ValueKind::empty:
        break;
    }
    return R"({"t":"s","v":""})";
}

/// Finds the id of an object that stops being JSON somewhere behind it.
class IdFinder : public nlohmann::json_sax<Json> {
public:
    Json id; ///< null if it was not found

    bool key(string_t& name) override
    {
        m_idFollows = m_depth == 1 && name == "id";
        return true;
    }
    bool start_object(std::size_t) override { return enter(); }
    bool start_array(std::size_t) override { return enter(); }
    bool end_object() override { return leave(); }
    bool end_array() override { return leave(); }
    bool null() override { return true; }
    bool boolean(bool value) override { return take(value); }
    bool number_integer(number_integer_t value) override { return take(value); }
    bool number_unsigned(number_unsigned_t value) override { return take(value); }
    bool number_float(number_float_t value, const string_t&) override { return take(value); }
    bool string(string_t& value) override { return take(value); }
    bool binary(binary_t&) override { return true; }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override
    {
        return false;
    }

private:
    bool enter()
    {
        ++m_depth;
        m_idFollows = false;
        return true;
    }
    bool leave()
    {
        --m_depth;
        return true;
    }
    template <typename T>
    bool take(const T& value)
    {
        if (m_idFollows)
            id = value;
        return !std::exchange(m_idFollows, false); // nothing else is wanted
    }

    int m_depth = 0;
    bool m_idFollows = false;
};

std::string refusal(const Json& id, std::string_view reason)
{
    return R"({"id":)" + id.dump(-1, ' ', false, Json::error_handler_t::replace) + R"(,"error":)" +
           jsonText(reason) + '}';
}

std::string answerToCase(const Json& request, const Json& id, std::ostream& notes)
{
    SheetCase sheets(request, notes);
    sheets.workbook().recalculate();
    std::string answer =
        R"({"id":)" + id.dump(-1, ' ', false, Json::error_handler_t::replace) + R"(,"values":{)";
    const char* separator = "";
    for (const WantedCell& wanted : sheets.wanted()) {
        answer += separator + jsonText(wanted.name) + ':' +
                  valueObject(sheets.workbook().sheet(wanted.sheet).value(wanted.cell));
        separator = ",";
    }
    return answer + "}}";
}

} // namespace

std::string answerTo(std::string_view request, std::ostream& notes)
{
    Json parsed;
    try {
        parsed = Json::parse(request);
    } catch (const Json::exception& error) {
        IdFinder finder;
        Json::sax_parse(request, &finder);
        return refusal(finder.id, error.what());
    }
    const Json id = parsed.is_object() ? parsed.value("id", Json()) : Json();
    try {
        return answerToCase(parsed, id, notes);
    } catch (const std::exception& error) {
        return refusal(id, error.what());
    }
}

} // namespace spreadsheet
