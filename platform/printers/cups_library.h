#pragma once
#include <cups/cups.h>

namespace selfreport {

/// The functions of the print service's library that we call, under their own names. It brings eighteen
/// others along, whose loading takes a tenth of what the program needs for a report; so it is loaded when
/// somebody prints, and a machine without it has no printers but runs everything else.
struct CupsLibrary {
    decltype(&::httpConnect2) httpConnect2;
    decltype(&::httpClose) httpClose;
    decltype(&::httpSetTimeout) httpSetTimeout;
    decltype(&::ippPort) ippPort;
    decltype(&::ippGetString) ippGetString;
    decltype(&::pwgMediaForPWG) pwgMediaForPWG;
    decltype(&::cupsServer) cupsServer;
    decltype(&::cupsEncryption) cupsEncryption;
    decltype(&::cupsLastError) cupsLastError;
    decltype(&::cupsGetDests2) cupsGetDests2;
    decltype(&::cupsFreeDests) cupsFreeDests;
    decltype(&::cupsGetOption) cupsGetOption;
    decltype(&::cupsAddOption) cupsAddOption;
    decltype(&::cupsFreeOptions) cupsFreeOptions;
    decltype(&::cupsCopyDestInfo) cupsCopyDestInfo;
    decltype(&::cupsFindDestDefault) cupsFindDestDefault;
    decltype(&::cupsFreeDestInfo) cupsFreeDestInfo;
    decltype(&::cupsCreateJob) cupsCreateJob;
    decltype(&::cupsStartDocument) cupsStartDocument;
    decltype(&::cupsWriteRequestData) cupsWriteRequestData;
    decltype(&::cupsFinishDocument) cupsFinishDocument;
    decltype(&::cupsCancelJob2) cupsCancelJob2;
};

/// Loaded with the first call, for the process's life.
/// @throws PrintServiceError if it is not installed
const CupsLibrary& cups();

} // namespace selfreport
