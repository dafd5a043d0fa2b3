#pragma once
#include <QComboBox>

namespace selfreport {

/// A drop-down list of this control name.
inline QComboBox* namedList(const char* name)
{
    auto* made = new QComboBox;
    made->setObjectName(name);
    return made;
}

} // namespace selfreport
