#include "plugin/class_registration.h"

#include <cstddef>
#include <cstring>

#include "plugin/host_state.h"
#include "plugin/wrappers.h"
#include "plugin/zeroed_block.h"

namespace {

constexpr std::uintptr_t kOldFlags = 0xC0000;

std::uintptr_t RewrittenFlags(std::uintptr_t flags, double hostVersion) {
  if (hostVersion >= 2010.029) {
    if ((flags & 0x40000) != 0) flags |= 4;
    if ((flags & 0x80000) != 0) flags |= 8;
  }
  return flags & ~kOldFlags;
}

template <typename Entry>
void RewriteFlagsOf(void* list, std::uintptr_t count, double hostVersion) {
  Entry* entries = static_cast<Entry*>(list);
  if (entries == nullptr) return;
  for (std::intptr_t i = 0; i < static_cast<std::intptr_t>(count); ++i) {
    entries[i].flags = RewrittenFlags(entries[i].flags, hostVersion);
  }
}

bool IsEmpty(const void* list, std::uintptr_t count) {
  return list == nullptr || static_cast<std::intptr_t>(count) <= 0;
}

// A new array with the first `kept` words of each entry of `words` words; null for an empty list
// and when memory is short.
std::uintptr_t* ShortenEntries(const void* list, std::uintptr_t count, std::size_t words,
                               std::size_t kept) {
  if (IsEmpty(list, count)) return nullptr;
  const std::size_t keptBytes = kept * sizeof(std::uintptr_t);
  // The size cannot wrap: no list of 2^58 entries fits any address space.
  auto* shortened = static_cast<std::uintptr_t*>(AllocateZeroed(std::uint64_t{count} * keptBytes));
  if (shortened == nullptr) return nullptr;
  const auto* source = static_cast<const std::uintptr_t*>(list);
  for (std::uintptr_t i = 0; i < count; ++i) {
    std::memcpy(shortened + i * kept, source + i * words, keptBytes);
  }
  return shortened;
}

// Puts a list's shortened copy into `target`. False when it should have one and has none.
bool Shorten(const void* list, std::uintptr_t count, std::size_t words, std::size_t kept,
             void*& target) {
  target = ShortenEntries(list, count, words, kept);
  return target != nullptr || IsEmpty(list, count);
}

// Each four-word entry points at its copy with its second word.
void LinkToCopies(void* list, std::uintptr_t count, void* copies) {
  if (copies == nullptr) return;
  auto* source = static_cast<std::uintptr_t*>(list);
  auto* copy = static_cast<std::uintptr_t*>(copies);
  for (std::uintptr_t i = 0; i < count; ++i) {
    source[i * 4 + 1] = reinterpret_cast<std::uintptr_t>(copy + i * 2);
  }
}

}  // namespace

void RewriteFlags(REALclassDefinition& definition, double hostVersion) {
  definition.flags = RewrittenFlags(definition.flags, hostVersion);
  RewriteFlagsOf<REALmethodDefinition>(definition.methods, definition.methodCount, hostVersion);
  RewriteFlagsOf<REALmethodDefinition>(definition.sharedMethods, definition.sharedMethodCount,
                                       hostVersion);
  RewriteFlagsOf<REALproperty>(definition.properties, definition.propertyCount, hostVersion);
  RewriteFlagsOf<REALproperty>(definition.sharedProperties, definition.sharedPropertyCount,
                               hostVersion);
}

void RegisterClassExtension(REALclassDefinition& definition) {
  definition.version = static_cast<std::uintptr_t>(CurrentREALControlVersion);
  REALRegisterClassExtension(&definition);
}

OldProperty* FixProperties(const REALproperty* properties, std::uintptr_t count) {
  return reinterpret_cast<OldProperty*>(ShortenEntries(properties, count, 12, 10));
}

bool ConvertForOldHost(REALclassDefinition& definition) {
  ZeroedBlock<REALclassDefinition> block(sizeof(REALclassDefinition));
  if (!block) return false;
  REALclassDefinition& old = *block.Data();
  old = definition;
  old.version = 9;
  std::memset(old.words16to17, 0, sizeof(old.words16to17));
  if (!Shorten(definition.properties, definition.propertyCount, 12, 10, old.properties) ||
      !Shorten(definition.methods, definition.methodCount, 6, 4, old.methods) ||
      !Shorten(definition.sharedMethods, definition.sharedMethodCount, 6, 4, old.sharedMethods) ||
      !Shorten(definition.fourWordEntries, definition.fourWordCount, 4, 2, old.fourWordEntries)) {
    return false;
  }
  LinkToCopies(definition.fourWordEntries, definition.fourWordCount, old.fourWordEntries);
  if (!Shorten(definition.fiveWordEntries, definition.fiveWordCount, 5, 3, old.fiveWordEntries) ||
      !Shorten(definition.sharedProperties, definition.sharedPropertyCount, 12, 10,
               old.sharedProperties)) {
    return false;
  }
  definition = old;
  return true;
}
