#pragma once
#include "windows/explain/frmDrill.h"

#include <string>

namespace selfreport {

struct ReportContext;

/// Shows another stored report for use, over a window, until it is closed. Tells the user if there is none of
/// that name.
/// @param from   whose database has it; what is open there stays as it is
/// @param place  finds the cell that is active first
void showReferredReport(const ReportContext& from, const std::string& name, const frmDrill::PlaceIn& place,
                        QWidget* parent);

} // namespace selfreport
