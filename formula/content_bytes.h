#pragma once
#if __has_include("spreadsheet/files/content.h")
#include "spreadsheet/files/content.h"
#else
#include <cstddef>
#include <span>
#include <stdexcept>
#include <vector>
namespace spreadsheet {
class Workbook;
struct ContentError : std::runtime_error {
    using std::runtime_error::runtime_error;
};
std::vector<std::byte> saveContent(const Workbook&);
void loadContent(Workbook&, std::span<const std::byte>);
} // namespace spreadsheet
#endif
