#pragma once
#include <QDoubleSpinBox>
#include <QSpinBox>

namespace selfreport {

/// A spin box that takes what an input method writes in full width, "１２．５", for what it means.
template <class SpinBox>
class NumberField : public SpinBox {
public:
    using SpinBox::SpinBox;

    QValidator::State validate(QString& input, int& place) const override
    {
        input = input.normalized(QString::NormalizationForm_KC);
        return SpinBox::validate(input, place);
    }
};

using WholeNumberField = NumberField<QSpinBox>;
using DecimalField = NumberField<QDoubleSpinBox>;

} // namespace selfreport
