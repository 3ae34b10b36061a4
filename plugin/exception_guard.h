// Turns C++ exceptions into host exceptions.
#pragma once

// Raises the host exception that stands for the C++ exception now being handled; call it in a catch
// block. While it builds that exception's own message, a further C++ exception is not turned into
// yet another one.
void RaiseCaughtException();

// What `function` returns, or null when it throws; the host exception is then raised.
template <typename Function>
auto Guarded(Function&& function) -> decltype(function()) {
  try {
    return function();
  } catch (...) {
    RaiseCaughtException();
    return nullptr;
  }
}
