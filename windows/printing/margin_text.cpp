#include "windows/printing/margin_text.h"

#include "text/ascii.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace selfreport {

namespace {

constexpr int pointPlace = 1;
constexpr int length = 4;

/// A plain decimal number from 0, without sign or exponent.
std::optional<double> plainNumber(std::string_view text)
{
    double number = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    const bool plain = std::ranges::all_of(text, [](char c) { return ascii::isDigit(c) || c == '.'; });
    if (error != std::errc() || end != text.data() + text.size() || !plain)
        return std::nullopt;
    return number;
}

} // namespace

bool MarginText::setText(std::string_view text)
{
    const auto fits = [](char c) { return ascii::isDigit(c) || c == '_'; };
    if (text.size() != length || text[pointPlace] != '.' || !fits(text[0]) || !fits(text[2]) ||
        !fits(text[3]))
        return false;
    m_text = text;
    return true;
}

void MarginText::setCursor(int place)
{
    m_cursor = std::clamp(place, 0, length);
    m_ranOver = false;
}

bool MarginText::type(char c)
{
    if (c == '.')
        return typePoint();
    if (!ascii::isDigit(c) || m_cursor >= length)
        return false;
    if (m_cursor == pointPlace) {
        ++m_cursor;
        m_ranOver = true;
    }
    m_text[static_cast<std::size_t>(m_cursor++)] = c;
    return true;
}

bool MarginText::typePoint()
{
    if (m_cursor <= pointPlace) {
        m_cursor = pointPlace + 1;
        return true;
    }
    if (m_ranOver) {
        m_text = empty;
        m_cursor = length; // the digits that follow find no place
    }
    return false;
}

void MarginText::eraseBefore()
{
    if (m_cursor == pointPlace + 1)
        --m_cursor; // the point stays
    if (m_cursor > 0)
        erase(m_cursor - 1, m_cursor);
    m_cursor = std::max(m_cursor - 1, 0);
}

void MarginText::eraseAfter()
{
    const int place = m_cursor == pointPlace ? pointPlace + 1 : m_cursor;
    erase(place, place + 1);
}

void MarginText::erase(int from, int to)
{
    for (int place = std::max(from, 0); place < std::min(to, length); ++place)
        if (place != pointPlace)
            m_text[static_cast<std::size_t>(place)] = '_';
}

bool MarginText::paste(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\n' || text.back() == '\r'))
        text.remove_suffix(1);
    const auto number = plainNumber(text);
    const auto shown = number ? marginText(*number) : std::nullopt;
    if (!shown || std::abs(marginInches(*shown) - *number) > 1e-9)
        return false; // 10.5 does not fit, and neither does 1.234
    m_text = *shown;
    m_cursor = length;
    return true;
}

std::optional<std::string> marginText(double inches)
{
    const double hundredths = std::floor(inches * 100 + 0.5 + 1e-9);
    if (!(hundredths >= 0 && hundredths <= 999))
        return std::nullopt;
    const int whole = static_cast<int>(hundredths);
    std::string text = std::to_string(whole / 100) + '.';
    return text + static_cast<char>('0' + whole / 10 % 10) + static_cast<char>('0' + whole % 10);
}

std::string filledMargin(std::string_view text)
{
    std::string filled(text);
    std::ranges::replace(filled, '_', '0');
    return filled;
}

double marginInches(std::string_view text)
{
    return plainNumber(text).value_or(0);
}

} // namespace selfreport
