#include "spreadsheet/values/CompensatedSum.h"

#include <cstring>

namespace spreadsheet {

namespace {

// Explicit lanes: the compiler does not vectorise a compensated loop by itself.
using Lanes = double __attribute__((vector_size(16)));
constexpr std::size_t laneWidth = 2;
constexpr std::size_t chains = 4; ///< independent sums hide the latency of the additions
constexpr std::size_t step = laneWidth * chains;

} // namespace

void CompensatedSum::add(std::span<const double> numbers)
{
    std::size_t at = 0;
    if (numbers.size() >= 4 * step) {
        Lanes sums[chains] = {};
        Lanes errors[chains] = {};
        for (; at + step <= numbers.size(); at += step) {
            for (std::size_t chain = 0; chain < chains; ++chain) {
                Lanes number;
                std::memcpy(&number, numbers.data() + at + chain * laneWidth, sizeof number);
                const Lanes sum = sums[chain] + number;
                const Lanes part = sum - sums[chain];
                errors[chain] += (sums[chain] - (sum - part)) + (number - part);
                sums[chain] = sum;
            }
        }
        for (std::size_t chain = 0; chain < chains; ++chain) {
            for (std::size_t lane = 0; lane < laneWidth; ++lane) {
                add(sums[chain][lane]);
                m_error += errors[chain][lane];
            }
        }
    }
    for (; at < numbers.size(); ++at)
        add(numbers[at]);
}

double compensatedSum(std::span<const double> numbers)
{
    CompensatedSum sum;
    sum.add(numbers);
    return sum.total();
}

} // namespace spreadsheet
