// The tables of all host entries, one per file of entries, and the host methods.
#pragma once

#include <span>

#include "host/entry_scope.h"

namespace host {

std::span<const EntryRow> ObjectEntries();        // references, instances, classes, exceptions
std::span<const EntryRow> PictureEntries();       // making, locking, masks, graphics
std::span<const EntryRow> PropertyEntries();      // reading and setting by name
std::span<const EntryRow> RegistrationEntries();  // registration, version, yielding
std::span<const EntryRow> StringEntries();        // host strings

// The routine of a host method of the object's class; null when it has none of that declaration.
REALroutine HostMethod(const Object& object, const std::string& declaration);

}  // namespace host
