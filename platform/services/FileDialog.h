#pragma once
#include "platform/services/InUse.h"

#include <optional>
#include <string>

namespace selfreport {

/// How a file dialog opens. Whoever holds one sets what it names and leaves the rest as it was.
struct FileDialogSettings {
    // Values of `flags`, to be added up.
    static constexpr int overwritePrompt = 2;    ///< saving asks before it replaces a file
    static constexpr int hideReadOnly = 4;       ///< no check box "read only"; there is none anyway
    static constexpr int noReadOnlyFile = 32768; ///< saving refuses a file that cannot be written

    std::string fileName; ///< preset; a pattern such as "*.xls" says which files are listed
    std::string title;    ///< "" for the system's own
    std::string filter;   ///< description, bar, pattern, and again: "报表文件(*.ss7)|*.ss7"
    std::string folder;   ///< opened in; "" for the current one
    int flags = 0;
};

/// The system's choice of a file. Texts are UTF-8.
class FileDialog {
public:
    virtual ~FileDialog() = default;

    /// The path of a file that exists. Nothing if the user cancels.
    virtual std::optional<std::string> chooseToOpen(const FileDialogSettings& settings) = 0;

    /// A path to write to, with the filter's suffix if the user typed none. Nothing if the user cancels.
    virtual std::optional<std::string> chooseToSave(const FileDialogSettings& settings) = 0;

    /// What is in use without a replacement: at first a dialog that is cancelled at once.
    static FileDialog*& usual();
};

using FileDialogInUse = InUse<FileDialog>;

} // namespace selfreport
