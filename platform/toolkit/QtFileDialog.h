#pragma once
#include "platform/services/FileDialog.h"

namespace selfreport {

/// The toolkit's file dialog, modal to the active window.
class QtFileDialog : public FileDialog {
public:
    std::optional<std::string> chooseToOpen(const FileDialogSettings& settings) override;
    std::optional<std::string> chooseToSave(const FileDialogSettings& settings) override;
};

} // namespace selfreport
