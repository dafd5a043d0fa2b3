#pragma once
#include "platform/services/ColourDialog.h"
#include "platform/services/FileDialog.h"
#include "platform/services/FontDialog.h"
#include "platform/services/PrinterSetupDialog.h"

#include <deque>
#include <utility>
#include <vector>

namespace selfreport {

/// What a dialog was opened with, and the answers it gives, one after the other; then it is cancelled.
template <class Asked, class Answer>
class Script {
public:
    std::vector<Asked> asked;
    std::deque<std::optional<Answer>> answers;

protected:
    std::optional<Answer> next(Asked first)
    {
        asked.push_back(std::move(first));
        if (answers.empty())
            return {};
        std::optional<Answer> answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }
};

struct ScriptedColourDialog : ColourDialog, Script<std::uint32_t, std::uint32_t> {
    std::optional<std::uint32_t> choose(std::uint32_t first) override { return next(first); }
};

struct ScriptedFontDialog : FontDialog, Script<FontChoice, FontChoice> {
    std::optional<FontChoice> choose(const FontChoice& first) override { return next(first); }
};

struct ScriptedPrinterSetupDialog : PrinterSetupDialog, Script<PrinterSetup, PrinterSetup> {
    std::optional<PrinterSetup> choose(const PrinterSetup& first) override { return next(first); }
};

/// How a file dialog was opened.
struct AskedFile {
    bool toSave = false;
    FileDialogSettings settings;
};

struct ScriptedFileDialog : FileDialog, Script<AskedFile, std::string> {
    std::optional<std::string> chooseToOpen(const FileDialogSettings& settings) override
    {
        return next({false, settings});
    }
    std::optional<std::string> chooseToSave(const FileDialogSettings& settings) override
    {
        return next({true, settings});
    }
};

} // namespace selfreport
