#include "tools/sheet_eval/answer.h"

#include "tests/CommaLocale.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

using namespace spreadsheet;
using Json = nlohmann::json;

namespace {

std::string answer(const std::string& request)
{
    std::ostringstream notes;
    return answerTo(request, notes);
}

/// The kind is the same and the value too, numbers to 1e-9 of their size.
bool agree(const Json& computed, const Json& expected)
{
    if (computed.at("t") != expected.at("t") || computed.at("t") != "n")
        return computed == expected;
    const double a = computed.at("v").get<double>();
    const double b = expected.at("v").get<double>();
    return std::fabs(a - b) <= 1e-9 * std::max(std::fabs(a), std::fabs(b));
}

std::string outputOf(const std::string& command)
{
    std::string output;
    std::FILE* const pipe = popen(command.c_str(), "r");
    char buffer[4096];
    for (std::size_t read; (read = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        output.append(buffer, read);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

/// The cases of a file with their values, as many as it is said to hold.
void expectAll(const char* path, int cases, int values)
{
    std::ifstream file(path);
    for (std::string line; std::getline(file, line); --cases) {
        const Json request = Json::parse(line);
        const Json computed = Json::parse(answer(line));
        SCOPED_TRACE(request.at("id").get<std::string>() + " " + request.at("what").get<std::string>());
        EXPECT_EQ(computed.at("id"), request.at("id"));
        for (const auto& [name, expected] : request.at("expect").items()) {
            const Json& value = computed.at("values").at(name);
            EXPECT_TRUE(agree(value, expected)) << name << ": " << value << " for " << expected;
            --values;
        }
    }
    EXPECT_EQ(cases, 0) << path;
    EXPECT_EQ(values, 0) << path;
}

} // namespace

TEST(SheetEval, SheetsAsAccountantsWriteThem)
{
    expectAll(TEST_DATA_FOLDER "/formulas.jsonl", 40, 147);
    expectAll(TEST_DATA_FOLDER "/formulas-2.jsonl", 54, 59);
}

TEST(SheetEval, ReadsEveryKindOfCell)
{
    const struct {
        const char* cell; ///< A1, in JSON
        const char* formula;
        const char* expected;
    } cases[] = {
        {"3", "=A1*2", R"({"t":"n","v":6})"},
        {"-0.1", "=A1", R"({"t":"n","v":-0.1})"},
        {"1e300", "=A1", R"({"t":"n","v":1e+300})"},
        {"true", "=A1", R"({"t":"b","v":true})"},
        {R"("12")", "=A1", R"({"t":"s","v":"12"})"},
        {R"("'=1+1")", "=A1", R"({"t":"s","v":"=1+1"})"},
        {R"("''")", "=LEN(A1)", R"({"t":"n","v":1})"},
        {R"("#DIV/0!")", "=A1", R"({"t":"e","v":"#DIV/0!"})"},
        {R"("#N/A")", "=ISNA(A1)", R"({"t":"b","v":true})"},
        {R"("'#N/A")", "=ISNA(A1)", R"({"t":"b","v":false})"},
        {R"("")", "=ISBLANK(A1)", R"({"t":"b","v":false})"},
        {R"("=-0")", "=A1", R"({"t":"n","v":0})"},
        {R"("a\"\u4e2d\\")", "=A1&CHAR(10)", "{\"t\":\"s\",\"v\":\"a\\\"中\\\\\\n\"}"},
        {"1", "=NOSUCHFUNCTION(A1)", R"({"t":"e","v":"#NAME?"})"},
        {"1", "=1+*2", R"({"t":"e","v":"#NAME?"})"},
        {"1", "=A5", R"({"t":"n","v":0})"},
        {"1", "'", R"({"t":"s","v":""})"},
    };
    for (const auto& c : cases) {
        const std::string request = std::string(R"({"id":7,"sheets":[{"name":"S","cells":{"A1":)") + c.cell +
                                    R"(,"B1":")" + c.formula + R"("}}],"want":["S!B1"]})";
        EXPECT_EQ(answer(request), std::string(R"({"id":7,"values":{"S!B1":)") + c.expected + "}}")
            << request;
    }
}

TEST(SheetEval, NumbersKnowNoLocale)
{
    const std::string request =
        R"x({"id":1,"sheets":[{"name":"S","cells":{"A1":1234.5,"A2":1e-7,"B1":"=A1/10",)x"
        R"x("B2":"=A2&\"|\"&TEXT(A1,\"#,##0.00\")","B3":"=VALUE(\"0.25\")+{0.5}"}}],)x"
        R"x("want":["S!A1","S!B1","S!B2","S!B3"]})x";
    const std::string expected = answer(request);
    const Json values = Json::parse(expected).at("values");
    EXPECT_EQ(values.at("S!A1").at("v"), 1234.5);
    EXPECT_EQ(values.at("S!B3").at("v"), 0.75);
    for (const CommaLocale::Reach reach : {CommaLocale::Reach::process, CommaLocale::Reach::thread}) {
        const CommaLocale locale(reach);
        EXPECT_EQ(answer(request), expected);
    }
}

TEST(SheetEval, NamesArraysSheetsAndEpochs)
{
    const struct {
        const char* request; ///< without braces and id
        const char* values;
    } cases[] = {
        {R"("sheets":[{"name":"It's","cells":{"A1":2}},{"name":"2月 调整","cells":{"b2":"='It''s'!A1+1"}}],
            "want":["'2月 调整'!B2","'It''s'!A1"])",
         R"({"'2月 调整'!B2":{"t":"n","v":3},"'It''s'!A1":{"t":"n","v":2}})"},
        {R"("sheets":[{"name":"S","cells":{"A1":2,"B1":"=RATE1*10"}}],"names":{"RATE1":"=S!$A$1"},
            "want":["S!B1"])",
         R"({"S!B1":{"t":"n","v":20}})"},
        {R"("sheets":[{"name":"S","cells":{"A1":1,"A2":2}}],"arrays":{"S!B1:C3":"=A1:A2*{10,20}"},
            "want":["S!C2","S!B3"])",
         R"({"S!C2":{"t":"n","v":40},"S!B3":{"t":"e","v":"#N/A"}})"},
        {R"("sheets":[{"name":"S","cells":{"A1":1,"A2":2,"B2":"=A1:A2*10"}}],"want":["S!B2"])",
         R"({"S!B2":{"t":"n","v":20}})"},
        {R"("sheets":[{"name":"S","cells":{"A1":"=DATE(1904,1,2)+0"}}],"date1904":true,"want":["S!A1"])",
         R"({"S!A1":{"t":"n","v":1}})"},
        {R"("sheets":[{"name":"S"}],"want":["S!A1"])", R"({"S!A1":{"t":"s","v":""}})"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(answer(std::string(R"({"id":"x",)") + c.request + "}"),
                  std::string(R"({"id":"x","values":)") + c.values + "}")
            << c.request;
}

TEST(SheetEval, RefusesWhatItCannotServe)
{
    const struct {
        const char* request;
        const char* id;
        const char* reason; ///< part of it
    } cases[] = {
        {"nonsense", "null", "parse error"},
        {R"({"id":"a","sheets":[{"name":"S")", R"("a")", "parse error"},
        {R"({"sheets":{"id":3},"id":"late",)", R"("late")", "parse error"},
        {R"({"other":[1,2],"x":{"id":3})", "null", "parse error"},
        {"[1]", "null", "no object"},
        {R"({"id":"b"})", R"("b")", "\"sheets\" is missing"},
        {R"({"id":"b","sheets":{}})", R"("b")", "\"sheets\" is no array"},
        {R"({"id":"b","sheets":[],"want":[]})", R"("b")", "empty"},
        {R"({"id":"b","sheets":[{"name":"S"},{"name":"s"}],"want":[]})", R"("b")", "s: "},
        {R"({"id":"b","sheets":[{"name":"S","cells":{"A0":1}}],"want":[]})", R"("b")", "no cell: A0"},
        {R"({"id":"b","sheets":[{"name":"S","cells":{"A1":null}}],"want":[]})", R"("b")", "A1 is no text"},
        {R"({"id":"b","sheets":[{"name":"S"}],"want":["T!A1"]})", R"("b")", "no sheet: T!A1"},
        {R"({"id":"b","sheets":[{"name":"S"}],"want":["S!A1:B2"]})", R"("b")", "no cell: S!A1:B2"},
        {R"({"id":"b","sheets":[{"name":"S"}],"names":{"A1":"=1"},"want":[]})", R"("b")", "A1: "},
        {R"({"id":"b","sheets":[{"name":"S"}],"arrays":{"S!A1:XFD1048576":"=1"},"want":[]})", R"("b")",
         "too many cells"},
        {"{\"id\":\"b\xff\"}", "null", "parse error"},
    };
    for (const auto& c : cases) {
        const Json refused = Json::parse(answer(c.request));
        EXPECT_EQ(refused.at("id").dump(), c.id) << c.request;
        EXPECT_NE(refused.at("error").get<std::string>().find(c.reason), std::string::npos) << refused;
    }
}

TEST(SheetEval, ProgramGoesOnAfterABadLine)
{
    const std::string good = R"({"id":1,"sheets":[{"name":"S","cells":{"A1":"=1+1"}}],"want":["S!A1"]})";
    const std::string output =
        outputOf("printf '%s\\n' 'bad' '' '" + good + "' | " TEST_BINARY_FOLDER "/sheet-eval");
    std::istringstream lines(output);
    std::string first, second, third;
    std::getline(lines, first);
    std::getline(lines, second);
    EXPECT_NE(first.find(R"("error":)"), std::string::npos) << first;
    EXPECT_EQ(second, R"({"id":1,"values":{"S!A1":{"t":"n","v":2}}})");
    EXPECT_FALSE(std::getline(lines, third));
}
