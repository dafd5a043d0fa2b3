#include "platform/services/ColourDialog.h"
#include "platform/services/FileDialog.h"
#include "platform/services/FontDialog.h"
#include "platform/services/PrinterSetupDialog.h"

namespace selfreport {

ColourDialog*& ColourDialog::usual()
{
    struct Cancelled : ColourDialog {
        std::optional<std::uint32_t> choose(std::uint32_t) override { return {}; }
    };
    static Cancelled cancelled;
    static ColourDialog* usual = &cancelled;
    return usual;
}

FontDialog*& FontDialog::usual()
{
    struct Cancelled : FontDialog {
        std::optional<FontChoice> choose(const FontChoice&) override { return {}; }
    };
    static Cancelled cancelled;
    static FontDialog* usual = &cancelled;
    return usual;
}

PrinterSetupDialog*& PrinterSetupDialog::usual()
{
    struct Cancelled : PrinterSetupDialog {
        std::optional<PrinterSetup> choose(const PrinterSetup&) override { return {}; }
    };
    static Cancelled cancelled;
    static PrinterSetupDialog* usual = &cancelled;
    return usual;
}

FileDialog*& FileDialog::usual()
{
    struct Cancelled : FileDialog {
        std::optional<std::string> chooseToOpen(const FileDialogSettings&) override { return {}; }
        std::optional<std::string> chooseToSave(const FileDialogSettings&) override { return {}; }
    };
    static Cancelled cancelled;
    static FileDialog* usual = &cancelled;
    return usual;
}

} // namespace selfreport
