#include "spreadsheet/functions/statistics/samples.h"

#include "spreadsheet/functions/statistics/spread.h"
#include "spreadsheet/values/coercion.h"
#include "spreadsheet/values/CompensatedSum.h"

namespace spreadsheet {

namespace {

/// Rows of an argument that can hold anything.
int usedRows(const Call& call, std::size_t argument)
{
    if (!call[argument].isArea())
        return call.rows(argument);
    return std::max(0, usedPart(call.place().book, call[argument].area()).rows());
}

} // namespace

double PairedSample::crossDeviations() const
{
    const double meanOfFirst = meanOf(first);
    const double meanOfSecond = meanOf(second);
    CompensatedSum products;
    for (std::size_t i = 0; i < first.size(); ++i)
        products.add((first[i] - meanOfFirst) * (second[i] - meanOfSecond));
    return products.total();
}

PairedSample pairedSample(Call& call, std::size_t first, std::size_t second)
{
    PairedSample sample;
    for (const std::size_t argument : {first, second}) {
        const Operand& operand = call[argument];
        if (operand.isAreas() || operand.isMissing())
            call.fail(CellError::value);
        else if (operand.isValue() && operand.value().isError())
            call.fail(operand.value().error());
    }
    if (call.failed())
        return sample;
    const long long columns = call.columns(first);
    const long long otherColumns = call.columns(second);
    const bool sameShape = columns == otherColumns && call.rows(first) == call.rows(second);
    if (columns * call.rows(first) != otherColumns * call.rows(second)) {
        call.fail(CellError::na);
        return sample;
    }
    const int rows = sameShape ? std::max(usedRows(call, first), usedRows(call, second)) : call.rows(first);
    if (columns * rows > static_cast<long long>(maxArrayElements)) {
        call.fail(CellError::value);
        return sample;
    }
    call.pay(8.0 * static_cast<double>(columns * rows));
    for (long long i = 0; i < columns * rows && !call.failed(); ++i) {
        const Value a = call.element(first, static_cast<int>(i / columns), static_cast<int>(i % columns));
        const Value b =
            call.element(second, static_cast<int>(i / otherColumns), static_cast<int>(i % otherColumns));
        if (a.isError() || b.isError()) {
            call.fail(a.isError() ? a.error() : b.error());
            return sample;
        }
        const auto numberOfA = countedNumber(a);
        const auto numberOfB = countedNumber(b);
        if (numberOfA && numberOfB) {
            sample.first.push_back(*numberOfA);
            sample.second.push_back(*numberOfB);
        }
    }
    return sample;
}

} // namespace spreadsheet
