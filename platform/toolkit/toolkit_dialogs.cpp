#include "platform/toolkit/toolkit_dialogs.h"

#include "platform/services/PrintService.h"
#include "platform/toolkit/QtColourDialog.h"
#include "platform/toolkit/QtFileDialog.h"
#include "platform/toolkit/QtFontDialog.h"
#include "platform/toolkit/QtPreferences.h"
#include "platform/toolkit/QtPrinterSetupDialog.h"

namespace selfreport {

void useToolkitDialogs()
{
    static QtColourDialog colours;
    static QtFontDialog fonts;
    static QtPrinterSetupDialog printers;
    static QtFileDialog files;
    static QtPreferences chosen;
    ColourDialog::usual() = &colours;
    FontDialog::usual() = &fonts;
    PrinterSetupDialog::usual() = &printers;
    FileDialog::usual() = &files;
    Preferences::usual() = &chosen;
    useSystemPrintService();
}

} // namespace selfreport
