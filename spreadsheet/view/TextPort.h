#pragma once
#include "spreadsheet/view/FormulaEntry.h"

#include <QColor>
#include <QRect>

#include <memory>
#include <vector>

class QLineEdit;
class QPlainTextEdit;
class QWidget;

namespace spreadsheet {

/// A stretch of a text in a colour of its own.
struct ColouredText {
    int begin = 0;
    int length = 0;
    QColor colour = {};
    bool isMistake = false; ///< underlined with a wave
};

/// What formula entry needs of a text edit, whatever its class.
class TextPort {
public:
    virtual ~TextPort() = default;
    virtual QWidget& widget() = 0;
    virtual EditedText edited() const = 0;
    /// One step of the edit's own undo.
    virtual void setEdited(const EditedText& edited) = 0;
    virtual void setColours(const std::vector<ColouredText>& colours) = 0;
    /// In the widget's coordinates.
    virtual QRect cursorRect() const = 0;
};

std::unique_ptr<TextPort> textPort(QLineEdit& edit);
std::unique_ptr<TextPort> textPort(QPlainTextEdit& edit);

} // namespace spreadsheet
