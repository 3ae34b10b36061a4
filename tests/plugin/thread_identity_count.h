// Counts how often the thread's identity is asked for, by anybody in the process.
#pragma once

namespace plugin_test {

int ThreadIdentityCalls();

}  // namespace plugin_test
