// How picturehost ends, and how it tells what went wrong.
#pragma once

#include <stdexcept>
#include <string>

namespace tool {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

// What was asked for cannot be: no such picture, unknown method, a wrong argument. Exit status 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What was asked for did not work out: the plug-in refused, the output cannot be written. Exit
// status 1.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Throws Failure when not everything could be written that was printed on standard output so far.
void CheckPrinted();

// "picturehost: " and the text on standard error, as one line whatever the text holds.
void Complain(std::string text);

}  // namespace tool
