#pragma once

namespace spreadsheet {

/// Local day and time of now as a serial number.
double presentSerial();

} // namespace spreadsheet
