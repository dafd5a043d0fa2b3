#pragma once
#include <functional>
#include <QObject>
#include <span>
#include <string>
#include <vector>

class QGridLayout;
class QLineEdit;
class QWidget;

namespace selfreport {

/// The text boxes `txt_0`, `txt_1`, … of a formula dialog, one below the other, each with its label
/// `Label2_0`, … and, where a picker is offered, the image `ImgSeek_0`, … beside it.
class ArgumentBoxes : public QObject {
public:
    struct Box {
        const char* label; ///< UTF-8
        bool hasPicker = false;
    };

    ArgumentBoxes(QWidget* window, QGridLayout* rows, const std::vector<Box>& boxes);

    /// Called for F7 in a box with a picker and for a click on its image, which then gives the box the focus.
    std::function<void(int index)> seek;

    /// Called after a change of any box.
    std::function<void()> changed;

    QLineEdit& box(int index) { return *m_boxes[static_cast<std::size_t>(index)]; }

    /// What the boxes hold, unchanged.
    template <class Texts>
    Texts texts() const
    {
        Texts texts;
        for (std::size_t index = 0; index < texts.size(); ++index)
            texts[index] = textOf(index);
        return texts;
    }

    void setTexts(std::span<const std::string> texts);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::string textOf(std::size_t index) const;

    std::vector<QLineEdit*> m_boxes;
    std::vector<bool> m_hasPicker;
};

} // namespace selfreport
