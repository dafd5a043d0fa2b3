#pragma once
#include "state/shared_state.h"
#include "windows/formulas/FormulaCell.h"

#include <QStringList>

namespace selfreport::test {

/// Keeps the formulas that were written, or refuses them.
class RecordingCell : public FormulaCell {
public:
    RecordingCell()
        : FormulaCell(sharedContext)
    {
    }
    spreadsheet::Refusal writeFormula(const QString& formula) override
    {
        if (refusal.isEmpty())
            written.append(formula);
        return refusal.toStdString();
    }
    QStringList written;
    QString refusal;
};

} // namespace selfreport::test
