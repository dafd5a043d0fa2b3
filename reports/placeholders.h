#pragma once
#include <string>

namespace selfreport {

class SettingsStore;

/// A header or footer code string with "&Comp", "&operator", "&EndDate" and "&PrintDate" replaced by the run
/// parameters "Value2", "Value3", "Value1" and "Value4" of group "ParamValue": one after the other in this
/// order, letter case ignored; what a value brings in is replaced too.
std::string placeholdersFilled(std::string text, const SettingsStore& settings);

} // namespace selfreport
