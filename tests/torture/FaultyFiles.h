#pragma once
#include <string>

namespace selfreport::torture {

/// What becomes of one of the embedded database's calls to the system.
enum class Fault {
    failsOnce,    ///< it fails, those after it work
    failsFromNow, ///< it fails, and all that come after it
    diskIsFull,   ///< writing fails for want of room from now on; other calls work
    killed,       ///< the process dies before it
    killedWithin, ///< … in the middle of a write, otherwise behind the call
};

/// The calls with which the embedded database opens, deletes, locks, reads, writes, cuts and flushes its
/// files, as they pass through a file system of the test's own. For sessions opened since beginWatching().
namespace faulty_files {

void beginWatching();

/// Orders a fault at call number `place`, from 1, and counts from here on.
void order(Fault fault, int place);
/// Ends the fault. Returns how many calls there were since order().
int endFault();

} // namespace faulty_files

} // namespace selfreport::torture
