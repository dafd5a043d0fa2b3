#include "spreadsheet/functions/engineering/units.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>

namespace spreadsheet {

// A unit is a row with its factor to one base unit of its quantity, so any two units of a quantity convert
// and a new one is one row. Factors are written as products of what defines the unit, not as rounded
// decimals: converting there and back must end where it began.

namespace {

enum class Quantity : std::uint8_t {
    mass,
    length,
    time,
    pressure,
    force,
    energy,
    power,
    magnetism,
    temperature,
    volume,
    area,
    information,
    speed,
};

/// To which power a prefix counts; 0: the unit takes none.
enum Prefixed : int { plain = 0, metric = 1, squared = 2, cubed = 3 };

struct Unit {
    std::string_view name;
    Quantity quantity;
    double factor; ///< of the quantity's base unit
    int prefixed = plain;
    double offset = 0; ///< of zero, in base units; temperatures only
};

// Exact where a unit is defined by another one: international inch and pound, thermochemical calorie,
// astronomical unit of 2012 (parsec), Julian year (light year).
constexpr double inch = 0.0254;
constexpr double foot = 12 * inch;
constexpr double yard = 3 * foot;
constexpr double mile = 5280 * foot;
constexpr double nauticalMile = 1852;
constexpr double surveyFoot = 1200.0 / 3937;
constexpr double pica = inch / 72; ///< a point of 1/72 inch
constexpr double lightYear = 9460730472580800;
constexpr double parsec = 3.08567758128155e16;
constexpr double angstrom = 1e-10;
constexpr double pound = 453.59237; ///< grams
constexpr double gravity = 9.80665;
constexpr double gallon = 231 * inch * inch * inch;
constexpr double imperialGallon = 0.00454609;
constexpr double poundForce = pound / 1000 * gravity;
constexpr double horsepower = 550 * foot * poundForce;
constexpr double hour = 3600;

constexpr double square(double length)
{
    return length * length;
}

constexpr double cube(double length)
{
    return length * length * length;
}

constexpr Unit units[] = {
    {"g", Quantity::mass, 1, metric},
    {"sg", Quantity::mass, poundForce / foot * 1000},
    {"lbm", Quantity::mass, pound},
    {"u", Quantity::mass, 1.66053100460465e-24, metric},
    {"ozm", Quantity::mass, pound / 16},
    {"grain", Quantity::mass, pound / 7000},
    {"cwt", Quantity::mass, pound * 100},
    {"shweight", Quantity::mass, pound * 100},
    {"uk_cwt", Quantity::mass, pound * 112},
    {"lcwt", Quantity::mass, pound * 112},
    {"hweight", Quantity::mass, pound * 112},
    {"stone", Quantity::mass, pound * 14},
    {"ton", Quantity::mass, pound * 2000},
    {"uk_ton", Quantity::mass, pound * 2240},
    {"LTON", Quantity::mass, pound * 2240},
    {"brton", Quantity::mass, pound * 2240},

    {"m", Quantity::length, 1, metric},
    {"mi", Quantity::length, mile},
    {"Nmi", Quantity::length, nauticalMile},
    {"in", Quantity::length, inch},
    {"ft", Quantity::length, foot},
    {"yd", Quantity::length, yard},
    {"ang", Quantity::length, angstrom, metric},
    {"ell", Quantity::length, 45 * inch},
    {"ly", Quantity::length, lightYear, metric},
    {"parsec", Quantity::length, parsec, metric},
    {"pc", Quantity::length, parsec, metric},
    {"Picapt", Quantity::length, pica},
    {"Pica", Quantity::length, pica},
    {"pica", Quantity::length, inch / 6},
    {"survey_mi", Quantity::length, 5280 * surveyFoot},

    {"yr", Quantity::time, 365.25 * 24 * hour},
    {"day", Quantity::time, 24 * hour},
    {"d", Quantity::time, 24 * hour},
    {"hr", Quantity::time, hour},
    {"mn", Quantity::time, 60},
    {"min", Quantity::time, 60},
    {"sec", Quantity::time, 1, metric},
    {"s", Quantity::time, 1, metric},

    {"Pa", Quantity::pressure, 1, metric},
    {"p", Quantity::pressure, 1, metric},
    {"atm", Quantity::pressure, 101325, metric},
    {"at", Quantity::pressure, 101325, metric},
    {"mmHg", Quantity::pressure, 133.322, metric},
    {"psi", Quantity::pressure, poundForce / inch / inch},
    {"Torr", Quantity::pressure, 101325.0 / 760},

    {"N", Quantity::force, 1, metric},
    {"dyn", Quantity::force, 1e-5, metric},
    {"dy", Quantity::force, 1e-5, metric},
    {"lbf", Quantity::force, poundForce},
    {"pond", Quantity::force, gravity / 1000, metric},

    {"J", Quantity::energy, 1, metric},
    {"e", Quantity::energy, 1e-7, metric},
    {"c", Quantity::energy, 4.184, metric},
    {"cal", Quantity::energy, 4.1868, metric},
    {"eV", Quantity::energy, 1.60217648740644e-19, metric},
    {"ev", Quantity::energy, 1.60217648740644e-19, metric},
    {"HPh", Quantity::energy, horsepower* hour},
    {"hh", Quantity::energy, horsepower* hour},
    {"Wh", Quantity::energy, hour, metric},
    {"wh", Quantity::energy, hour, metric},
    {"flb", Quantity::energy, foot* poundForce},
    {"BTU", Quantity::energy, 1055.05585262},
    {"btu", Quantity::energy, 1055.05585262},

    {"HP", Quantity::power, horsepower},
    {"h", Quantity::power, horsepower},
    {"PS", Quantity::power, 75 * gravity},
    {"W", Quantity::power, 1, metric},
    {"w", Quantity::power, 1, metric},

    {"T", Quantity::magnetism, 1, metric},
    {"ga", Quantity::magnetism, 1e-4, metric},

    {"K", Quantity::temperature, 1, metric},
    {"kel", Quantity::temperature, 1, metric},
    {"C", Quantity::temperature, 1, plain, 273.15},
    {"cel", Quantity::temperature, 1, plain, 273.15},
    {"F", Quantity::temperature, 5.0 / 9, plain, 459.67 * 5 / 9},
    {"fah", Quantity::temperature, 5.0 / 9, plain, 459.67 * 5 / 9},
    {"Rank", Quantity::temperature, 5.0 / 9},
    {"Reau", Quantity::temperature, 1.25, plain, 273.15},

    {"tsp", Quantity::volume, gallon / 768},
    {"tspm", Quantity::volume, 5e-6},
    {"tbs", Quantity::volume, gallon / 256},
    {"oz", Quantity::volume, gallon / 128},
    {"cup", Quantity::volume, gallon / 16},
    {"pt", Quantity::volume, gallon / 8},
    {"us_pt", Quantity::volume, gallon / 8},
    {"uk_pt", Quantity::volume, imperialGallon / 8},
    {"qt", Quantity::volume, gallon / 4},
    {"uk_qt", Quantity::volume, imperialGallon / 4},
    {"gal", Quantity::volume, gallon},
    {"uk_gal", Quantity::volume, imperialGallon},
    {"l", Quantity::volume, 1e-3, metric},
    {"L", Quantity::volume, 1e-3, metric},
    {"lt", Quantity::volume, 1e-3, metric},
    {"barrel", Quantity::volume, 42 * gallon},
    {"bushel", Quantity::volume, 2150.42 * cube(inch)},
    {"GRT", Quantity::volume, 100 * cube(foot)},
    {"regton", Quantity::volume, 100 * cube(foot)},
    {"MTON", Quantity::volume, 40 * cube(foot)},
    {"ang3", Quantity::volume, cube(angstrom), cubed},
    {"ang^3", Quantity::volume, cube(angstrom), cubed},
    {"m3", Quantity::volume, 1, cubed},
    {"m^3", Quantity::volume, 1, cubed},
    {"ly3", Quantity::volume, cube(lightYear)},
    {"ly^3", Quantity::volume, cube(lightYear)},
    {"in3", Quantity::volume, cube(inch)},
    {"in^3", Quantity::volume, cube(inch)},
    {"ft3", Quantity::volume, cube(foot)},
    {"ft^3", Quantity::volume, cube(foot)},
    {"yd3", Quantity::volume, cube(yard)},
    {"yd^3", Quantity::volume, cube(yard)},
    {"mi3", Quantity::volume, cube(mile)},
    {"mi^3", Quantity::volume, cube(mile)},
    {"Nmi3", Quantity::volume, cube(nauticalMile)},
    {"Nmi^3", Quantity::volume, cube(nauticalMile)},
    {"Picapt3", Quantity::volume, cube(pica)},
    {"Picapt^3", Quantity::volume, cube(pica)},
    {"Pica3", Quantity::volume, cube(pica)},
    {"Pica^3", Quantity::volume, cube(pica)},

    {"uk_acre", Quantity::area, 4840 * square(yard)},
    {"us_acre", Quantity::area, 43560 * square(surveyFoot)},
    {"ar", Quantity::area, 100, metric},
    {"ha", Quantity::area, 10000},
    {"Morgen", Quantity::area, 2500},
    {"ang2", Quantity::area, square(angstrom), squared},
    {"ang^2", Quantity::area, square(angstrom), squared},
    {"m2", Quantity::area, 1, squared},
    {"m^2", Quantity::area, 1, squared},
    {"ly2", Quantity::area, square(lightYear)},
    {"ly^2", Quantity::area, square(lightYear)},
    {"in2", Quantity::area, square(inch)},
    {"in^2", Quantity::area, square(inch)},
    {"ft2", Quantity::area, square(foot)},
    {"ft^2", Quantity::area, square(foot)},
    {"yd2", Quantity::area, square(yard)},
    {"yd^2", Quantity::area, square(yard)},
    {"mi2", Quantity::area, square(mile)},
    {"mi^2", Quantity::area, square(mile)},
    {"Nmi2", Quantity::area, square(nauticalMile)},
    {"Nmi^2", Quantity::area, square(nauticalMile)},
    {"Picapt2", Quantity::area, square(pica)},
    {"Picapt^2", Quantity::area, square(pica)},
    {"Pica2", Quantity::area, square(pica)},
    {"Pica^2", Quantity::area, square(pica)},

    {"bit", Quantity::information, 1, metric},
    {"byte", Quantity::information, 8, metric},

    {"m/s", Quantity::speed, 1, metric},
    {"m/sec", Quantity::speed, 1, metric},
    {"m/h", Quantity::speed, 1 / hour, metric},
    {"m/hr", Quantity::speed, 1 / hour, metric},
    {"mph", Quantity::speed, mile / hour},
    {"kn", Quantity::speed, nauticalMile / hour},
    {"admkn", Quantity::speed, 6080 * foot / hour},
};

struct Prefix {
    std::string_view name;
    double factor;
};

constexpr Prefix decimalPrefixes[] = {
    {"Y", 1e24}, {"Z", 1e21}, {"E", 1e18},  {"P", 1e15},  {"T", 1e12},  {"G", 1e9},   {"M", 1e6},
    {"k", 1e3},  {"h", 1e2},  {"da", 1e1},  {"e", 1e1},   {"d", 1e-1},  {"c", 1e-2},  {"m", 1e-3},
    {"u", 1e-6}, {"n", 1e-9}, {"p", 1e-12}, {"f", 1e-15}, {"a", 1e-18}, {"z", 1e-21}, {"y", 1e-24},
};

constexpr Prefix binaryPrefixes[] = {
    {"Yi", 0x1p80}, {"Zi", 0x1p70}, {"Ei", 0x1p60}, {"Pi", 0x1p50},
    {"Ti", 0x1p40}, {"Gi", 0x1p30}, {"Mi", 0x1p20}, {"ki", 0x1p10},
};

const Unit* plainUnit(std::string_view name)
{
    const auto found = std::ranges::find(units, name, &Unit::name);
    return found == std::end(units) ? nullptr : found;
}

std::optional<Unit> prefixedUnit(std::string_view name, std::span<const Prefix> prefixes)
{
    for (const Prefix& prefix : prefixes) {
        if (!name.starts_with(prefix.name))
            continue;
        const Unit* unit = plainUnit(name.substr(prefix.name.size()));
        if (!unit || unit->prefixed == plain)
            continue;
        Unit scaled = *unit;
        scaled.factor *= std::pow(prefix.factor, unit->prefixed);
        return scaled;
    }
    return std::nullopt;
}

std::optional<Unit> unitOfName(std::string_view name)
{
    if (const Unit* unit = plainUnit(name))
        return *unit;
    const auto binary = prefixedUnit(name, binaryPrefixes);
    if (binary && binary->quantity == Quantity::information)
        return binary;
    return prefixedUnit(name, decimalPrefixes);
}

} // namespace

std::optional<double> convertedUnit(double number, std::string_view from, std::string_view to)
{
    const auto source = unitOfName(from);
    const auto target = unitOfName(to);
    if (!source || !target || source->quantity != target->quantity)
        return std::nullopt;
    if (from == to)
        return number;
    return (number * source->factor + source->offset - target->offset) / target->factor;
}

} // namespace spreadsheet
