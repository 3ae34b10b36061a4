// A process of its own for what should end it.
#pragma once

#include <functional>
#include <string>

namespace torture {

// Runs `action` in a child process. Empty when it was aborted; else how it ended.
std::string WhyNotAborted(const std::function<void()>& action);

}  // namespace torture
