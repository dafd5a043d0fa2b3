#pragma once
#include <QPushButton>

#include <string>

namespace selfreport {

/// The bar above the grid that says how many cells show figures that could not be fetched. Hidden while there
/// are none; a click leads to the first of them.
class FailedFetchBar : public QPushButton {
    Q_OBJECT

public:
    explicit FailedFetchBar(QWidget* parent = nullptr);

    /// @param text  "3 处取数失败，数字不可用"; empty hides the bar
    void tell(const std::string& text);
};

} // namespace selfreport
