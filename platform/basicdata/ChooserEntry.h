#pragma once
#include <QString>

namespace selfreport {

/// What a chooser offers: an account of the chart or an item of a class.
struct ChooserEntry {
    QString code;
    QString name;
    QString detail;  ///< shown in the third column
    int parent = -1; ///< index of the entry above in the tree; it stands before this one. -1: top level
};

} // namespace selfreport
