#pragma once

namespace spreadsheet {

/// A random number from 0 to below 1.
double randomShare();

} // namespace spreadsheet
