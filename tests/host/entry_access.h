// Entries of the current runtime as a plug-in reaches them.
#pragma once

#include "host/runtime.h"

// host::Runtime::Resolve with the shape of the entry.
template <typename Entry>
Entry* EntryOf(const char* name) {
  return reinterpret_cast<Entry*>(host::Runtime::Resolve(name));
}

inline REALpicture Handle(host::Picture* picture) { return host::HandleOf<REALpicture>(picture); }

// The object behind a handle that an entry gave out, as class T; null when it is none.
template <typename T>
T* ObjectOf(const void* handle) {
  return dynamic_cast<T*>(host::Runtime::Current().Book().Find(handle));
}

// Whether the newest violation contains `part`.
inline bool LastViolationSays(host::Runtime& runtime, const std::string& part) {
  const auto& violations = runtime.Book().Violations();
  return !violations.empty() && violations.back().find(part) != std::string::npos;
}
