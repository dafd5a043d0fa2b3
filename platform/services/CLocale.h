#pragma once
#include <locale.h>

namespace selfreport {

/// While it lives, the C library of the calling thread reads and writes numbers as in the C locale, whatever
/// the host has set for the process or for the thread. For leaf calls into libraries that count by the
/// locale; never around what runs an event loop or calls the host, whose own code would run under it.
class CLocale {
public:
    CLocale()
        : m_former(uselocale(plain()))
    {
    }
    ~CLocale() { uselocale(m_former); }
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;

private:
    static locale_t plain()
    {
        static const locale_t made = newlocale(LC_ALL_MASK, "C", locale_t());
        return made;
    }

    locale_t m_former;
};

} // namespace selfreport
