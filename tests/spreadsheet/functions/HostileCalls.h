#pragma once
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// Calls that no report has: extreme numbers, texts, errors and nothing where something is expected,
/// ranges and arrays of every shape, up to 10,000 cells, beside each other. A test draws them by chance, a
/// fuzzer by its bytes.
class HostileCalls {
public:
    /// A number from 0 up to below the given one.
    using Choose = std::function<std::size_t(std::size_t)>;

    explicit HostileCalls(Choose choose)
        : m_choose(std::move(choose))
    {
    }

    /// The cells that the calls refer to, on the second sheet ("D").
    static void fill(Workbook& workbook)
    {
        demand(workbook.addSheet("D"));
        Sheet& sheet = workbook.sheet(2);
        for (int row = 1; row <= 10'000; ++row) { // A: numbers, B: numbers of any size, C: days, D: texts
            sheet.setNumber({1, row}, row * 37 % 101 - 20);
            sheet.setNumber({2, row}, row % 3 == 0 ? 1e300 / row : row % 3 == 1 ? -1e-300 * row : row * 1e9);
            sheet.setNumber({3, row}, 36'526 + row * 13 % 9'000);
            sheet.setText({4, row},
                          std::string(static_cast<std::size_t>(row % 7), 'a') + std::to_string(row % 97));
        }
        for (int row = 1; row <= 100; ++row) { // F1:DA100, of every kind
            for (int column = 6; column < 106; ++column)
                fillMixed(sheet, {column, row}, (row * 31 + column * 17) % 13);
        }
        for (int row = 101; row <= 200; ++row) { // F101:DA200, small numbers
            for (int column = 6; column < 106; ++column)
                sheet.setNumber({column, row}, (row * 7 + column * 3) % 19 + (row == column + 95 ? 20 : 0));
        }
    }

    /// A call of the function without "=".
    std::string call(const FunctionDescriptor& function)
    {
        const int most = std::min(function.maxArguments, function.minArguments + 4);
        const auto count = static_cast<std::size_t>(function.minArguments) +
                           m_choose(static_cast<std::size_t>(most - function.minArguments + 1));
        const std::size_t mood = m_choose(6);
        m_tall = m_choose(2) == 0;
        std::string text = std::string(function.name) + "(";
        for (std::size_t i = 0; i < count; ++i)
            text += (i == 0 ? "" : ",") + argument(mood);
        return text + ")";
    }

private:
    static void fillMixed(Sheet& sheet, CellAddress cell, int kind)
    {
        if (kind == 0)
            return;
        if (kind == 1)
            sheet.setText(cell, "");
        else if (kind == 2)
            sheet.setText(cell, "12%");
        else if (kind == 3)
            sheet.setText(cell, "*a?~");
        else if (kind == 4)
            sheet.setValue(cell, Value::boolean(cell.row % 2 == 0));
        else if (kind == 5 && cell.row % 10 == 0)
            sheet.setValue(cell, CellError::div0);
        else
            sheet.setNumber(cell, kind * 1.5 - cell.row);
    }

    template <std::size_t count>
    std::string oneOf(const std::array<std::string_view, count>& texts)
    {
        return std::string(texts[m_choose(count)]);
    }

    std::string extremeNumber()
    {
        static constexpr std::array<std::string_view, 32> numbers{
            "0",       "1",      "-1",         "0.5",        "2",       "1E300",       "-1E300",    "1E-300",
            "1E308",   "1E10",   "2147483647", "2147483648", "1E15",    "-2147483648", "1E9",       "9E15",
            "2958465", "1E6",    "1E5",        "170",        "1E20",    "2E20",        "0.9999999", "1E-9",
            "-0.5",    "1E-308", "32767",      "1048576",    "1000000", "4194304",     "1E4",       "1E150"};
        return oneOf(numbers);
    }
    std::string plainNumber()
    {
        static constexpr std::array<std::string_view, 18> numbers{
            "0",  "1",  "2",  "3",   "4",   "5",    "7",     "10",    "12",
            "20", "60", "99", "100", "0.1", "0.25", "40000", "41000", "45000.75"};
        return oneOf(numbers);
    }
    std::string fraction()
    {
        static constexpr std::array<std::string_view, 8> numbers{"0.5",   "0.01", "0.99",   "0.05",
                                                                 "1E-12", "0.3",  "1E-300", "0.999999999999"};
        return oneOf(numbers);
    }
    std::string text()
    {
        static constexpr std::array<std::string_view, 27> texts{R"("")",
                                                                R"("x")",
                                                                R"("12")",
                                                                R"("2011-3-5")",
                                                                R"("3+4i")",
                                                                R"("1E300")",
                                                                R"(">=0")",
                                                                R"("<>")",
                                                                R"("*a*a*a*a*b")",
                                                                R"("?~*")",
                                                                R"("D!A1:B9")",
                                                                R"("A1")",
                                                                R"("R[-1]C")",
                                                                R"("0.00,,%E+0")",
                                                                R"("yyyy-mm-dd[h]")",
                                                                R"("中文")",
                                                                R"(REPT("a",32767))",
                                                                R"("MCMXC")",
                                                                R"("FF")",
                                                                R"("1111111111")",
                                                                R"("m")",
                                                                R"("EUR")",
                                                                R"("1E300i")",
                                                                R"("YD")",
                                                                R"("数")",
                                                                R"(REPT("*a",200))",
                                                                R"(REPT("1,",9000))"};
        return oneOf(texts);
    }
    std::string error()
    {
        static constexpr std::array<std::string_view, 4> errors{"#N/A", "1/0", "#NUM!", "#VALUE!"};
        return oneOf(errors);
    }
    std::string range()
    {
        static constexpr std::array<std::string_view, 17> anySize{"D!A1:A3",
                                                                  "D!A1",
                                                                  "D!A1:C1",
                                                                  "D!F101:H103",
                                                                  "D!XX1:XY9",
                                                                  "D!C1",
                                                                  "D!B2",
                                                                  "D!F3:J7",
                                                                  "D!A1:A2:D!C9",
                                                                  "(D!A1:A3,D!C2)",
                                                                  "D!F101:I101",
                                                                  "D!F101:F110",
                                                                  "D!A1048570:A1048576",
                                                                  "D!C1:C9",
                                                                  "D!B1:B9",
                                                                  "D!D1:D9",
                                                                  "D!A9990:A10010"};
        static constexpr std::array<std::string_view, 6> tall{"D!A1:A10000", "D!B1:B10000", "D!C1:C10000",
                                                              "D!D1:D10000", "D!A1:D2500",  "D!A:A"};
        static constexpr std::array<std::string_view, 12> wide{
            "D!F1:DA100", "D!F101:DA200", "D!F1:DA1",     "D!F1:F100", "D!F101:AD125", "D!1:1",
            "D!A1:A100",  "D!C1:C100",    "D!F101:DA101", "D!B1:B100", "D!D1:D100",    "D!F7:DA7"};
        return m_choose(2) == 0 ? oneOf(anySize) : m_tall ? oneOf(tall) : oneOf(wide);
    }
    std::string array()
    {
        static constexpr std::array<std::string_view, 13> anySize{
            "{1,2,3}",        "{1;2;3}",      "{1,2;3,4}",    "{1,2,3;4,5,6}", "{1;1}",
            "{\"a\",TRUE}",   "{#N/A,1}",     "{0}",          "{3,2,1}",       "{0.5,0.5;1,2;3,4}",
            "{1E300,-1E300}", "{\"\",\"1\"}", "SEQUENCE(3,3)"};
        static constexpr std::array<std::string_view, 3> tall{"(D!A1:A10000+0)", "(D!D1:D10000&\"\")",
                                                              "SEQUENCE(10000)"};
        static constexpr std::array<std::string_view, 7> wide{
            "(D!B1:B100*1)",   "(D!F1:DA100&\"\")",    "(D!C1:C100>0)",  "SEQUENCE(100,100)",
            "SEQUENCE(1,100)", "TRANSPOSE(D!A1:A100)", "(D!F101:O110/1)"};
        return m_choose(2) == 0 ? oneOf(anySize) : m_tall ? oneOf(tall) : oneOf(wide);
    }

    /// Each mood has its mixture, so that some calls pass the checks and others meet them.
    std::string argument(std::size_t mood)
    {
        static constexpr std::array<std::array<unsigned char, 8>, 6> shares{{
            // extreme, plain, fraction, text, error, none, range, array
            {12, 2, 2, 0, 0, 0, 0, 0},
            {4, 8, 4, 0, 0, 0, 0, 0},
            {1, 3, 1, 0, 0, 0, 6, 6},
            {0, 4, 1, 1, 0, 1, 8, 1},
            {3, 4, 2, 6, 0, 1, 1, 1},
            {3, 3, 2, 3, 1, 2, 3, 3},
        }};
        std::size_t all = 0;
        for (const unsigned char share : shares[mood])
            all += share;
        std::size_t drawn = m_choose(all);
        std::size_t kind = 0;
        while (drawn >= shares[mood][kind])
            drawn -= shares[mood][kind++];
        std::string (HostileCalls::*const kinds[])() = {
            &HostileCalls::extremeNumber, &HostileCalls::plainNumber, &HostileCalls::fraction,
            &HostileCalls::text,          &HostileCalls::error,       &HostileCalls::nothing,
            &HostileCalls::range,         &HostileCalls::array};
        return (this->*kinds[kind])();
    }
    std::string nothing() { return {}; }

    Choose m_choose;
    bool m_tall = false; ///< this call's ranges: long columns, or rows and squares; together they are more
};

} // namespace spreadsheet
