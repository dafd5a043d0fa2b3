#include "component/host_call.h"

#include "failures/failure_text.h"

#include <QCoreApplication>
#include <QThread>

#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <mutex>
#include <thread>

namespace selfreport {

namespace {

/// The thread that may call: the toolkit's as soon as there is one, before that the first one seen.
bool isCallersThread()
{
    if (const QCoreApplication* application = QCoreApplication::instance())
        return application->thread() == QThread::currentThread();
    static std::mutex mutex;
    static std::thread::id first;
    const std::lock_guard lock(mutex);
    if (first == std::thread::id())
        first = std::this_thread::get_id();
    return first == std::this_thread::get_id();
}

/// The file that the toolkit's functions called here stand in.
std::filesystem::path ownToolkit()
{
    Dl_info info{};
    return dladdr(reinterpret_cast<void*>(&qVersion), &info) != 0 ? info.dli_fname : "";
}

bool isToolkitCore(const std::string& file)
{
    return file.starts_with("libQt") && file.find("Core.so") != std::string::npos;
}

} // namespace

std::optional<std::string> foreignToolkit()
{
    struct Search {
        std::filesystem::path own = ownToolkit();
        std::optional<std::string> found;
    } search;
    const auto visit = [](dl_phdr_info* library, std::size_t, void* data) {
        auto& running = *static_cast<Search*>(data);
        const std::filesystem::path file = library->dlpi_name;
        std::error_code ignored; // a file deleted since it was loaded is no other file
        if (isToolkitCore(file.filename().string()) && file != running.own &&
            !std::filesystem::equivalent(file, running.own, ignored) && !ignored)
            running.found = file.string();
        return running.found ? 1 : 0;
    };
    dl_iterate_phdr(visit, &search);
    return search.found;
}

std::string hostCall(const std::function<void()>& work) noexcept
{
    try {
        if (!isCallersThread())
            return "报表组件只能在主程序的界面线程上调用。";
        work();
        return {};
    } catch (const std::exception& error) {
        return failures::sentenceOf(error);
    } catch (...) {
        return "报表组件内部错误。";
    }
}

} // namespace selfreport
