#include "component/selfreport_c.h"
#include "component/clsSelfReport.h"
#include "component/host_call.h"
#include "component/instances.h"
#include "component/registration.h"
#include "failures/failure_text.h"

#include <new>
#include <string>
#include <string_view>

struct selfreport_instance {
    selfreport::clsSelfReport object;
    std::string error; ///< of a call that did not get as far as the object
};

namespace {

using selfreport::clsSelfReport;
using selfreport::hostCall;

std::string textOf(const char* text)
{
    return text == nullptr ? std::string() : std::string(text);
}

/// Runs `operation` on the instance's object. Copies of the arguments are made inside, as they may run out of
/// memory.
template <typename Operation>
int run(selfreport_instance* instance, const Operation& operation) noexcept
{
    if (instance == nullptr)
        return 0;
    try {
        instance->error.clear();
        operation(instance->object);
    } catch (const std::exception& error) {
        instance->error = failures::sentenceOf(error);
    }
    return 0;
}

selfreport_instance* create()
{
    return new (std::nothrow) selfreport_instance;
}

void release(selfreport_instance* instance)
{
    delete instance;
}

int editForm(selfreport_instance* instance, std::int16_t* type, std::int16_t* isShow)
{
    const std::int16_t none = 0;
    return run(instance, [&](clsSelfReport& object) { object.editForm(type ? *type : none, isShow); });
}

int init(selfreport_instance* instance, const char* connString, const char* title, const char* loginUserId,
         const char* appPath)
{
    return run(instance, [&](clsSelfReport& object) {
        object.init(textOf(connString), textOf(title), textOf(loginUserId), textOf(appPath));
    });
}

int cwSelfReport(selfreport_instance* instance)
{
    return run(instance, [](clsSelfReport& object) { object.cwSelfReport(); });
}

int cwSelfReportExe(selfreport_instance* instance, std::int32_t* interId)
{
    return run(instance, [&](clsSelfReport& object) { object.cwSelfReportExe(interId ? *interId : 0); });
}

const char* lastError(const selfreport_instance* instance)
{
    if (instance == nullptr)
        return "没有报表组件的实例。";
    return instance->error.empty() ? instance->object.lastError().c_str() : instance->error.c_str();
}

constexpr selfreport_class reportClass{
    sizeof(selfreport_class), "clsSelfReport", create, release, editForm, init, cwSelfReport,
    cwSelfReportExe,          lastError};

thread_local std::string registrationError;

} // namespace

extern "C" {

const selfreport_class* selfreport_get_class(const char* name)
{
    return name != nullptr && std::string_view(name) == reportClass.name ? &reportClass : nullptr;
}

int selfreport_can_unload_now()
{
    return selfreport::mayBeUnloaded() ? 1 : 0;
}

int selfreport_register()
{
    registrationError = hostCall(selfreport::registerLibrary);
    return registrationError.empty() ? 0 : -1;
}

int selfreport_unregister()
{
    registrationError = hostCall(selfreport::unregisterLibrary);
    return registrationError.empty() ? 0 : -1;
}

const char* selfreport_registration_error()
{
    return registrationError.c_str();
}

} // extern "C"
