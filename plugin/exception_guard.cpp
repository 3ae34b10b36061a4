#include "plugin/exception_guard.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <typeinfo>

#include "plugin/exceptions.h"

namespace {

bool gRaising = false;

class Raising {
 public:
  Raising() { gRaising = true; }
  ~Raising() { gRaising = false; }
  Raising(const Raising&) = delete;
  Raising& operator=(const Raising&) = delete;
};

void Raise(const char* className, const char* message) { RaiseException(className, message, 0, 0); }

// The order matters: range and overflow errors are logic or runtime errors too.
void RaiseMapped() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    Raise("OutOfMemoryException", "Failed to allocate memory.");
  } catch (const std::range_error& error) {
    Raise("OutOfBoundsException", error.what());
  } catch (const std::out_of_range& error) {
    Raise("OutOfBoundsException", error.what());
  } catch (const std::overflow_error& error) {
    Raise("OutOfBoundsException", error.what());
  } catch (const std::underflow_error& error) {
    Raise("OutOfBoundsException", error.what());
  } catch (const std::logic_error& error) {
    Raise("RuntimeException", error.what());
  } catch (const std::runtime_error& error) {
    Raise("RuntimeException", error.what());
  } catch (const std::bad_cast& error) {
    Raise("IllegalCastException", error.what());
  } catch (const std::exception& error) {
    Raise("RuntimeException", error.what());
  } catch (...) {
    Raise("RuntimeException", "Sorry, but there was an unnamed C++ Exception.");
  }
}

}  // namespace

void RaiseCaughtException() {
  if (gRaising) return;
  const Raising raising;
  RaiseMapped();
}
