#include "platform/printers/cups_library.h"

#include "platform/services/PrintService.h"

#include <dlfcn.h>

namespace selfreport {

namespace {

CupsLibrary loaded()
{
    void* const file = dlopen("libcups.so.2", RTLD_NOW | RTLD_LOCAL);
    const auto find = [&](auto& function, const char* name) {
        void* const found = file ? dlsym(file, name) : nullptr;
        if (!found)
            throw PrintServiceError("没有安装打印服务。");
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(found);
    };
    CupsLibrary library;
    find(library.httpConnect2, "httpConnect2");
    find(library.httpClose, "httpClose");
    find(library.httpSetTimeout, "httpSetTimeout");
    find(library.ippPort, "ippPort");
    find(library.ippGetString, "ippGetString");
    find(library.pwgMediaForPWG, "pwgMediaForPWG");
    find(library.cupsServer, "cupsServer");
    find(library.cupsEncryption, "cupsEncryption");
    find(library.cupsLastError, "cupsLastError");
    find(library.cupsGetDests2, "cupsGetDests2");
    find(library.cupsFreeDests, "cupsFreeDests");
    find(library.cupsGetOption, "cupsGetOption");
    find(library.cupsAddOption, "cupsAddOption");
    find(library.cupsFreeOptions, "cupsFreeOptions");
    find(library.cupsCopyDestInfo, "cupsCopyDestInfo");
    find(library.cupsFindDestDefault, "cupsFindDestDefault");
    find(library.cupsFreeDestInfo, "cupsFreeDestInfo");
    find(library.cupsCreateJob, "cupsCreateJob");
    find(library.cupsStartDocument, "cupsStartDocument");
    find(library.cupsWriteRequestData, "cupsWriteRequestData");
    find(library.cupsFinishDocument, "cupsFinishDocument");
    find(library.cupsCancelJob2, "cupsCancelJob2");
    return library;
}

} // namespace

const CupsLibrary& cups()
{
    static const CupsLibrary library = loaded();
    return library;
}

} // namespace selfreport
