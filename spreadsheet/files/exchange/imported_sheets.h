#pragma once
#include <string>

namespace spreadsheet {

class Warnings;
class Workbook;

/// Gives the workbook its sheet with that number (1: the one that every workbook has; else the next) under a
/// foreign file's name: shortened where it is too long, "Sheet1" and so on where it is not allowed or taken.
/// A changed name is a warning.
void addImportedSheet(Workbook& workbook, int number, const std::string& name, Warnings& warnings);

} // namespace spreadsheet
