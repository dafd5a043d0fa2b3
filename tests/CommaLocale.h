#pragma once
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <locale.h>
#include <stdexcept>
#include <string>
#include <unistd.h>

/// A locale with a decimal comma, made for the test program alone.
inline const char* commaLocaleName()
{
    struct Made {
        Made()
        {
            std::string pattern = (std::filesystem::temp_directory_path() / "locale-XXXXXX").string();
            folder = mkdtemp(pattern.data());
            const std::string command =
                "localedef -i de_DE -f UTF-8 --no-archive '" + (folder / "de_DE.UTF-8").string() + "'";
            if (std::system(command.c_str()) != 0)
                throw std::runtime_error("localedef made no locale");
            setenv("LOCPATH", folder.c_str(), 1);
        }
        ~Made() { std::filesystem::remove_all(folder); }
        std::filesystem::path folder;
    };
    static const Made made;
    return "de_DE.UTF-8";
}

/// True while the C library of this thread counts with commas.
inline bool countsWithComma()
{
    char text[16];
    std::snprintf(text, sizeof text, "%.1f", 1.5);
    return std::string(text) == "1,5" && std::strtod("2,5", nullptr) == 2.5;
}

/// Sets it for the whole process, as hosts do that take the user's locale, or for this thread alone.
class CommaLocale {
public:
    enum class Reach { process, thread };

    explicit CommaLocale(Reach reach)
        : m_former(std::setlocale(LC_ALL, nullptr))
    {
        const char* const name = commaLocaleName();
        if (reach == Reach::process)
            std::setlocale(LC_ALL, name);
        else
            uselocale(m_own = newlocale(LC_ALL_MASK, name, locale_t()));
        if (!countsWithComma())
            throw std::runtime_error("the locale was not set");
    }
    ~CommaLocale()
    {
        std::setlocale(LC_ALL, m_former.c_str());
        if (m_own) {
            uselocale(LC_GLOBAL_LOCALE);
            freelocale(m_own);
        }
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

private:
    std::string m_former;
    locale_t m_own = nullptr;
};
