#pragma once
#include <QDoubleSpinBox>
#include <QDoubleValidator>
#include <QIntValidator>
#include <QSpinBox>

namespace selfreport {

/// A spin box, or the validator of a line, that takes what an input method writes in full width, "１２．５",
/// for what it means.
template <class Field>
class NumberField : public Field {
public:
    using Field::Field;

    QValidator::State validate(QString& input, int& place) const override
    {
        input = input.normalized(QString::NormalizationForm_KC);
        return Field::validate(input, place);
    }
};

using WholeNumberField = NumberField<QSpinBox>;
using DecimalField = NumberField<QDoubleSpinBox>;
using WholeNumberValidator = NumberField<QIntValidator>;
using DecimalValidator = NumberField<QDoubleValidator>;

} // namespace selfreport
