// Linear forms of formulas drawn by chance against a copy of the workbook in which one answer is another.
#include "tests/spreadsheet/calculation/CalledBook.h"

#include "spreadsheet/calculation/PerturbedBook.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

using namespace spreadsheet;

namespace {

/// Formulas over A1:A12 (calls), B1:B12 (numbers), C1:C12 (keys), G1:G12 (an array) and those above them.
class FormulaDraw {
public:
    explicit FormulaDraw(unsigned seed)
        : m_random(seed)
    {
    }

    std::size_t choose(std::size_t below) { return m_random() % below; }
    std::string cell(const char* column) { return column + std::to_string(1 + choose(12)); }
    std::string range(const char* column)
    {
        const std::size_t first = 1 + choose(12);
        const std::size_t last = first + choose(13 - first);
        return column + std::to_string(first) + ":" + column + std::to_string(last);
    }
    /// @param above  how many formulas stand in F above this one
    std::string formula(int depth, std::size_t above)
    {
        const auto inner = [&] { return formula(depth - 1, above); };
        if (depth == 0)
            return leaf(above);
        switch (choose(28)) {
        case 0:
        case 1:
        case 2:
            return "(" + inner() + "+" + inner() + ")";
        case 3:
        case 4:
            return "(" + inner() + "-" + inner() + ")";
        case 5:
        case 6:
            return "(" + inner() + "*" + cell("B") + ")";
        case 7:
            return "(" + inner() + "/" + cell("B") + ")";
        case 8:
            return "-" + inner() + "%";
        case 9:
            return "(" + inner() + "*" + inner() + ")";
        case 10:
            return "IF(" + inner() + ">" + leaf(above) + "," + inner() + "," + inner() + ")";
        case 11:
            return "IF(" + cell("B") + ">5," + inner() + "," + inner() + ")";
        case 12:
            return "CHOOSE(1+MOD(ROW(" + cell("B") + "),2)," + inner() + "," + inner() + ")";
        case 13:
            return "IFERROR(" + inner() + "/(" + cell("B") + "-" + cell("B") + ")," + inner() + ")";
        case 14:
            return (choose(2) == 0 ? "MAX(" : "MIN(") + inner() + "," + range("A") + ")";
        case 15:
            return "ABS(" + inner() + ")";
        case 16:
            return (choose(2) == 0 ? "ROUND(" : "ROUNDDOWN(") + inner() + "," + std::to_string(choose(4)) +
                   ")";
        case 17:
            return "MROUND(ABS(" + inner() + "),0.05)";
        case 18:
            return "SQRT(ABS(" + inner() + "))";
        case 19:
            return "SUM(" + inner() + "," + range("A") + "," + range("B") + ")";
        default:
            return ofRanges(above);
        }
    }

private:
    std::string leaf(std::size_t above)
    {
        if (above > 0 && choose(4) == 0)
            return "F" + std::to_string(1 + choose(above));
        switch (choose(5)) {
        case 0:
            return std::to_string(1 + choose(40)) + ".5";
        case 1:
            return cell("B");
        case 2:
            return "Fetch(" + std::to_string(100 + choose(900)) + ".25)";
        default:
            return cell("A");
        }
    }
    std::string ofRanges(std::size_t above)
    {
        if (choose(2) == 0)
            return ofArrays(above);
        const std::string a = "A1:A12", to12 = std::to_string(1 + choose(12));
        switch (choose(16)) {
        case 0:
            return "AVERAGE(" + range("A") + "," + cell("B") + ")";
        case 1:
            return "SUMPRODUCT(" + a + ",B1:B12)";
        case 2:
            return "SUMPRODUCT((C1:C12=\"甲\")*" + a + ")";
        case 3:
            return "SUMIF(C1:C12,\"乙\"," + a + ")";
        case 4:
            return "SUMIFS(" + a + ",C1:C12,\"甲\",B1:B12,\">4\")";
        case 5:
            return "INDEX(A1:B12," + to12 + "," + std::to_string(1 + choose(2)) + ")";
        case 6:
            return "VLOOKUP(" + to12 + ",D1:E12,2,FALSE)";
        case 7:
            return "SUBTOTAL(" + std::string(choose(2) == 0 ? "9" : "101") + "," + range("A") + ")";
        case 8:
            return "LOOKUP(" + to12 + ",D1:D12," + a + ")";
        case 9:
            return "XLOOKUP(" + to12 + ",D1:D12," + a + ")*" + cell("B");
        case 10:
            return "SUMIF(B1:B12,\">4\",A1)"; // the shape is the first one's
        case 11:
            return "SUM((" + range("A") + "," + range("B") + "))";
        case 12:
            return "SUM(A1:A7 A3:A12,净额)";
        case 13:
            return "SUM(OFFSET(A1," + std::to_string(choose(9)) + ",0,3,2))/COUNT(" + range("A") + ")";
        case 14:
            return "SUM(" + range("G") + ")-" + cell("G");
        default:
            return above == 0 ? "SUM(" + range("A") + ")"
                              : "SUM(F1:F" + std::to_string(1 + choose(above)) + ")";
        }
    }
    std::string ofArrays(std::size_t above)
    {
        const std::string to12 = std::to_string(1 + choose(12));
        switch (choose(14)) {
        case 0: // a range beside an array gives the cell of the formula's row
            return "SUM(A1:A60*{1,2;3,4})";
        case 1:
            return "SUM(IF({1;0;1},A3:A5," + leaf(above) + "))";
        case 2:
            return "SUMPRODUCT(A1:A12/B1:B12)";
        case 3:
            return "SUMPRODUCT(--(C1:C12=\"甲\"),A1:A12)";
        case 4:
            return "SUMPRODUCT(IF(B1:B12>5,A1:A12,B1:B12)*1)";
        case 5:
            return "SUMPRODUCT(ROUND(A1:A12*{1,2},1))";
        case 6:
            return "INDEX(A1:A12*2," + to12 + ")-INDEX(A1:B12*{1,2}," + to12 + ",1)";
        case 7:
            return "SUM(INDEX(A1:B12,0,1))+SUM(ROUND(" + leaf(above) + ",{0,1,2}))";
        case 8:
            return "MAX({1,2}*" + leaf(above) + "," + cell("A") + ")";
        case 9:
            return "SUMPRODUCT(TRANSPOSE(A1:A12)*{1})";
        case 10:
            return "SUM({1,-1,2}*" + leaf(above) + "," + cell("A") + ")";
        case 11:
            return "SUMPRODUCT(ABS(A1:A12)+INT(A1:A12))";
        case 12:
            return "SUM(IFERROR(A1:A12/{1;0;2}," + leaf(above) + "))";
        default:
            return "SUMPRODUCT(CHOOSE({1,2},A1:A12,B1:B12)*{1,3})";
        }
    }

    std::mt19937 m_random;
};

constexpr int formulasPerBook = 50;

void fill(CalledBook& book, FormulaDraw& draw)
{
    for (int row = 1; row <= 12; ++row) {
        const std::string number = std::to_string(row);
        book.type("A" + number, std::string(draw.choose(3) == 0 ? "-" : "") + "Fetch(" +
                                    std::to_string(1000 + draw.choose(90'000)) + "." +
                                    std::to_string(10 + draw.choose(90)) + ")");
        book.sheet().setNumber({2, row}, 1 + static_cast<double>(draw.choose(9)));
        book.sheet().setText({3, row}, draw.choose(2) == 0 ? "甲" : "乙");
        book.sheet().setNumber({4, row}, row);
        book.type("E" + number, "A" + number + "*2");
    }
    EXPECT_FALSE(book.workbook.defineName("净额", "Sheet1!$A$1-Sheet1!$A$3"));
    EXPECT_FALSE(book.sheet().setArrayFormula({7, 1, 7, 12}, "A1:A12*2-B1:B12"));
    for (int row = 1; row <= formulasPerBook; ++row) {
        const std::string formula =
            draw.formula(static_cast<int>(draw.choose(4)), static_cast<std::size_t>(row) - 1);
        if (draw.choose(4) == 0)
            EXPECT_FALSE(book.sheet().setArrayFormula({6, row, 6, row}, formula));
        else
            book.type("F" + std::to_string(row), formula);
    }
    book.workbook.recalculate();
}

/// How much a figure may be off: amounts of the size that its summands have leave no more.
double toleranceOf(const LinearForm& form, const CalledBook& book)
{
    double size = std::abs(form.constant) + 1;
    for (const LinearTerm& term : form.terms)
        size += std::abs(term.coefficient * book.answer(term.cell, term.call).number());
    for (const LinearRounding& rounding : form.roundings)
        size += std::abs(rounding.amount);
    return 1e-9 * size;
}

/// The changes of an answer that are tried. A small one turns no condition; a large one makes little of what
/// is rounded.
constexpr double changes[] = {0.01, -0.01, 1, -1, 100, -100, 1000, -1000, 1e4, -1e4, 1e5, -1e5, 1e9, -1e9};

/// How much what is rounded may turn a change into another.
double roundingOf(const LinearForm& form)
{
    constexpr double mostTimes = 100; // that a rounded figure is counted
    double steps = 0;
    for (const LinearRounding& rounding : form.roundings)
        steps += mostTimes * rounding.step;
    return steps;
}

struct Figures {
    std::vector<LinearForm> forms;
    std::vector<double> values; ///< of an error, none
    /// By formula: whether a change has agreed with the coefficient of the call in question, or, of one that
    /// is not linear, with what it says it is made of.
    std::vector<bool> agreed;
};

void compare(const CalledBook& book, const PerturbedBook& copy, const PerturbedBook::Made& call,
             double change, Figures& figures)
{
    for (int row = 1; row <= formulasPerBook; ++row) {
        const auto at = static_cast<std::size_t>(row) - 1;
        const LinearForm& form = figures.forms[at];
        const auto term = std::ranges::find_if(form.terms, [&](const LinearTerm& each) {
            return each.cell == call.cell && each.call == call.call;
        });
        const double coefficient = term == form.terms.end() ? 0 : term->coefficient;
        const Value value = copy.value({1, 6, row});
        const bool staysError = value.isError() && std::isnan(figures.values[at]);
        const double moved = staysError ? 0 : value.isNumber() ? value.number() - figures.values[at] : NAN;
        const double size = std::abs(change);
        const double rounded = size < 1e3 * roundingOf(form) ? 1e-6 * size : roundingOf(form);
        const double tolerance = 1e-3 * toleranceOf(form, book) + 1e-6 * std::abs(coefficient * change) +
                                 (form.roundings.empty() ? 0 : std::max(rounded, 1e-6 * size));
        const bool isListed = term != form.terms.end() || std::abs(moved) <= tolerance;
        if (form.isLinear ? std::abs(moved - coefficient * change) <= tolerance : isListed)
            figures.agreed[at] = true;
    }
}

void checkSum(const CalledBook& book, const LinearForm& form, double value, const std::string& what)
{
    double sum = form.constant;
    for (const LinearTerm& term : form.terms)
        sum += term.coefficient * book.answer(term.cell, term.call).number();
    for (const LinearRounding& rounding : form.roundings)
        sum += rounding.amount;
    EXPECT_NEAR(sum, value, toleranceOf(form, book)) << what;
}

} // namespace

TEST(PerturbedBook, ACallThatIsOnlyMadeThenHasTheAnswerOfAnEqualOne)
{
    CalledBook book;
    book.type("A1", "Fetch(1)");
    book.type("A2", "Fetch(3)");
    book.type("A3", "Fetch(7)");
    book.type("B1", "IF(A1>0,5,Fetch(7))");
    book.type("B2", "IF(A1>0,5,Fetch(9))");
    book.workbook.recalculate();
    PerturbedBook copy(book.workbook.book(),
                       [&](const CallPlace& cell, int call) { return book.answer(cell, call); });
    EXPECT_EQ(copy.value({1, 2, 1}), Value(5.0));
    copy.compute({1, 1, 1}, 0, Value(-1.0));
    EXPECT_EQ(copy.value({1, 2, 1}), Value(7.0));
    EXPECT_EQ(copy.value({1, 2, 2}), Value(CellError::na)) << "no other asks that";
    EXPECT_EQ(book.sheet().value({2, 1}), Value(5.0)) << "the book itself";
}

TEST(LinearFormOracle, CoefficientsAreWhatAChangedAnswerShows)
{
    const char* const asked = std::getenv("SELFREPORT_FORMULAS"); // 20000 takes some ten seconds
    const int books = (asked ? std::atoi(asked) : 1'000) / formulasPerBook;
    int linear = 0, compared = 0;
    for (int number = 0; number < books; ++number) {
        FormulaDraw draw(static_cast<unsigned>(number) + 1);
        CalledBook book;
        fill(book, draw);
        Figures figures;
        for (int row = 1; row <= formulasPerBook; ++row) {
            const CallPlace cell{1, 6, row};
            const Value value = book.sheet().value({6, row});
            figures.forms.push_back(book.form(cell));
            figures.values.push_back(value.isNumber() ? value.number() : NAN);
            if (!figures.forms.back().isLinear)
                continue;
            ++linear;
            checkSum(book, figures.forms.back(), figures.values.back(), book.sheet().formula({6, row}));
        }
        PerturbedBook copy(book.workbook.book(),
                           [&book](const CallPlace& cell, int call) { return book.answer(cell, call); });
        for (const PerturbedBook::Made& call : copy.calls()) {
            figures.agreed.assign(formulasPerBook, false);
            for (const double change : changes) {
                copy.compute(call.cell, call.call, call.answer.number() + change);
                compare(book, copy, call, change, figures);
            }
            for (std::size_t at = 0; at < formulasPerBook; ++at) {
                compared += figures.forms[at].isLinear ? 1 : 0;
                EXPECT_TRUE(figures.agreed[at])
                    << "book " << number << " F" << at + 1 << " " << book.sheet().formula({6, int(at) + 1})
                    << " by " << cellName({call.cell.column, call.cell.row}) << "#" << call.call;
            }
        }
    }
    std::cout << books * formulasPerBook << " formulas, " << linear << " linear, " << compared
              << " coefficients compared\n";
    EXPECT_GE(2 * linear, books * formulasPerBook);
}

/// A mark stands where some bad call is in the form, and nowhere else; and it stands at each figure that a
/// small change of a bad call moves.
TEST(LinearFormOracle, MarksAreThoseOfTheCallsInTheForm)
{
    constexpr int books = 2'000 / formulasPerBook;
    int marked = 0;
    for (int number = 0; number < books; ++number) {
        FormulaDraw draw(static_cast<unsigned>(number) + 5'000);
        CalledBook book;
        fill(book, draw);
        const auto answers = [&book](const CallPlace& cell, int call) { return book.answer(cell, call); };
        PerturbedBook copy(book.workbook.book(), answers);
        std::map<std::pair<CallPlace, int>, int> bad;
        for (const PerturbedBook::Made& call : copy.calls())
            if (draw.choose(8) == 0)
                bad[{call.cell, call.call}] = 1 + static_cast<int>(draw.choose(3));
        const auto severity = [&bad](const CallPlace& cell, int call) {
            const auto found = bad.find({cell, call});
            return found == bad.end() ? 0 : found->second;
        };
        std::map<CallPlace, int> carried;
        for (const CarriedSeverity& each : carriedSeverities(book.workbook.book(), answers, severity))
            carried[each.cell] = each.severity;
        for (int row = 1; row <= formulasPerBook; ++row) {
            int worst = 0;
            for (const LinearTerm& term : book.form({1, 6, row}).terms)
                worst = std::max(worst, severity(term.cell, term.call));
            const auto mark = carried.find(CallPlace{1, 6, row});
            EXPECT_EQ(mark == carried.end() ? 0 : mark->second, worst) << "book " << number << " F" << row;
            marked += worst > 0 ? 1 : 0;
        }
        for (const PerturbedBook::Made& call : copy.calls()) {
            if (severity(call.cell, call.call) == 0)
                continue;
            copy.compute(call.cell, call.call, call.answer.number() + 1e-3);
            for (int row = 1; row <= formulasPerBook; ++row) {
                const Value before = book.sheet().value({6, row});
                const Value after = copy.value({1, 6, row});
                if (before.isNumber() && after.isNumber() &&
                    std::abs(after.number() - before.number()) > 1e-6 * (1 + std::abs(before.number()))) {
                    EXPECT_TRUE(carried.contains(CallPlace{1, 6, row})) << "book " << number << " F" << row;
                }
            }
        }
    }
    EXPECT_GT(marked, books * formulasPerBook / 10);
    EXPECT_LT(marked, books * formulasPerBook * 9 / 10);
}
