#pragma once

namespace selfreport {

/// Makes the toolkit's colour, font, printer and file dialogs and the system's printers the usual ones. Needs
/// the application object.
void useToolkitDialogs();

} // namespace selfreport
