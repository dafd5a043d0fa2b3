#pragma once
#include <cmath>
#include <span>

namespace spreadsheet {

/// A sum with what rounding lost on the way (two-sum after Knuth), so that amounts which cancel each
/// other end in 0.
class CompensatedSum {
public:
    void add(double number)
    {
        const double sum = m_sum + number;
        const double part = sum - m_sum;
        m_error += (m_sum - (sum - part)) + (number - part);
        m_sum = sum;
    }
    /// Long spans go through several lanes at once.
    void add(std::span<const double> numbers);
    void add(const CompensatedSum& other)
    {
        add(other.m_sum);
        m_error += other.m_error;
    }
    void takeOff(const CompensatedSum& other)
    {
        add(-other.m_sum);
        m_error -= other.m_error;
    }
    /// Infinite if the sum is beyond the range of numbers.
    double total() const { return std::isfinite(m_sum) ? m_sum + m_error : m_sum; }

private:
    double m_sum = 0;
    double m_error = 0;
};

/// Compensated sum: cancelling amounts end in 0.
double compensatedSum(std::span<const double> numbers);

} // namespace spreadsheet
