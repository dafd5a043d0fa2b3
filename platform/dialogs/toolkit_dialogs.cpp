#include "platform/dialogs/toolkit_dialogs.h"

#include "platform/dialogs/QtColourDialog.h"
#include "platform/dialogs/QtFileDialog.h"
#include "platform/dialogs/QtFontDialog.h"
#include "platform/dialogs/QtPrinterSetupDialog.h"
#include "platform/printers/PrintService.h"

namespace selfreport {

void useToolkitDialogs()
{
    static QtColourDialog colours;
    static QtFontDialog fonts;
    static QtPrinterSetupDialog printers;
    static QtFileDialog files;
    ColourDialog::usual() = &colours;
    FontDialog::usual() = &fonts;
    PrinterSetupDialog::usual() = &printers;
    FileDialog::usual() = &files;
    useSystemPrintService();
}

} // namespace selfreport
