#pragma once
#include <functional>

namespace selfreport::torture {

/// The statements of the embedded database as they are prepared, each part that reads, changes or ends a
/// transaction being a step. For sessions opened while it lives, on other threads than its own.
class EmbeddedSteps {
public:
    /// @param place  of the step, from 1, before which something happens; 0: they are counted only
    /// @param act    false: the step is refused
    explicit EmbeddedSteps(int place = 0, std::function<bool()> act = {});
    ~EmbeddedSteps();
    EmbeddedSteps(const EmbeddedSteps&) = delete;
    EmbeddedSteps& operator=(const EmbeddedSteps&) = delete;

    static int count(); ///< so far
};

} // namespace selfreport::torture
