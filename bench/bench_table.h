#pragma once
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

/// Seconds that the work takes: the best of a few runs, `prepare` before each and not counted.
inline double bestSeconds(int runs, const std::function<void()>& prepare, const std::function<void()>& work)
{
    double best = 1e9;
    for (int run = 0; run < runs; ++run) {
        prepare();
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        best = std::min(best, taken.count());
    }
    return best;
}

/// Prints rows of "what, measured, bound" and tells at the end how many bounds were missed.
class BenchTable {
public:
    explicit BenchTable(const char* title)
    {
        std::printf("%s\n%-66s %12s %12s\n", title, "", "measured", "bound");
    }

    void row(const std::string& what, double measured, double bound, const char* unit)
    {
        const bool met = measured <= bound;
        m_missed += !met;
        std::printf("%-66s %9.3f %-3s %8.3f %-3s%s\n", what.c_str(), measured, unit, bound, unit,
                    met ? "" : "  MISSED");
        std::fflush(stdout);
    }
    /// The program's exit code.
    int finish() const
    {
        std::printf("%d bound(s) missed\n", m_missed);
        return m_missed > 0;
    }

private:
    int m_missed = 0;
};
