#pragma once
#include <memory>

class QString;
class QWidget;

namespace selfreport::test {

/// A grid with one of every look that a cell may have: line styles, types, alignments, fonts, colours, spans.
std::unique_ptr<QWidget> formatsPage();
/// The same on paper.
void saveFormatsPdf(const QString& path);

} // namespace selfreport::test
