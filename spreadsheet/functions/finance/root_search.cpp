#include "spreadsheet/functions/finance/root_search.h"

#include <cmath>
#include <limits>
#include <utility>

namespace spreadsheet {

namespace {

constexpr double lowest = -1;

bool isClose(double step, double rate)
{
    return std::fabs(step) <= 1e-14 * std::max(1.0, std::fabs(rate));
}

std::optional<double> bySecants(const std::function<double(double)>& function, double guess)
{
    double before = guess;
    double rate = guess == 0 ? 1e-4 : guess * 1.001;
    double valueBefore = function(before);
    const double size = std::fabs(valueBefore);
    for (int i = 0; i < 60; ++i) {
        const double value = function(rate);
        if (value == 0)
            return rate;
        const double slope = (value - valueBefore) / (rate - before);
        if (!std::isfinite(slope) || slope == 0)
            break;
        double next = rate - value / slope;
        if (next <= lowest)
            next = (rate + lowest) / 2;
        if (next - lowest < 1e-9)
            break; // on its way to the pole, not to a zero
        // A step from afar is short for another reason: the function is steep there, not near a zero here.
        const bool wasNear = std::fabs(rate - before) <= 1e-3 * std::max(1.0, std::fabs(rate));
        if (wasNear && isClose(next - rate, rate))
            return next;
        before = std::exchange(rate, next);
        valueBefore = value;
    }
    // Noise of the last places may keep the steps from shrinking further.
    const bool small = std::fabs(function(rate)) <= 1e-11 * size && std::fabs(rate - before) < 1e-9;
    return small ? std::optional(rate) : std::nullopt;
}

double halved(const std::function<double(double)>& function, double low, double high)
{
    const bool lowIsNegative = function(low) < 0;
    for (int i = 0; i < 200 && !isClose(high - low, low); ++i) {
        const double middle = (low + high) / 2;
        ((function(middle) < 0) == lowIsNegative ? low : high) = middle;
    }
    return (low + high) / 2;
}

/// Rates that grow in steps of a tenth of 1 + rate, up and down from the guess in turn.
std::optional<double> byIntervals(const std::function<double(double)>& function, double guess)
{
    constexpr int mostSteps = 100;
    double up = guess;
    double down = guess;
    double valueUp = function(guess);
    double valueDown = valueUp;
    for (int i = 0; i < mostSteps; ++i) {
        const double above = (1 + up) * 1.1 - 1;
        const double below = (1 + down) / 1.1 - 1;
        const double valueAbove = function(above);
        const double valueBelow = function(below);
        if (std::isfinite(valueUp * valueAbove) && (valueUp < 0) != (valueAbove < 0))
            return halved(function, up, above);
        if (std::isfinite(valueDown * valueBelow) && (valueDown < 0) != (valueBelow < 0))
            return halved(function, below, down);
        up = above;
        down = below;
        valueUp = valueAbove;
        valueDown = valueBelow;
    }
    return std::nullopt;
}

} // namespace

std::optional<double> findRate(Call& call, double work, const std::function<double(double)>& function,
                               double guess)
{
    if (!(guess > lowest))
        return std::nullopt;
    const auto paid = [&](double rate) {
        call.pay(work);
        return call.failed() ? std::numeric_limits<double>::quiet_NaN() : function(rate);
    };
    if (paid(guess) == 0)
        return guess;
    const auto rate = bySecants(paid, guess);
    return rate || call.failed() ? rate : byIntervals(paid, guess);
}

} // namespace spreadsheet
