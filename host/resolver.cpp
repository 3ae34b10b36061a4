// Entry names to routines.
#include <algorithm>
#include <map>

#include "host/entry_tables.h"

namespace host {

namespace {

using Table = std::map<std::string, REALroutine>;

const Table& Routines() {
  static const Table table = [] {
    Table rows;
    for (const auto& entries : {ObjectEntries(), PictureEntries(), PropertyEntries(),
                                RegistrationEntries(), StringEntries()}) {
      for (const EntryRow& row : entries) rows[row.name] = row.routine;
    }
    return rows;
  }();
  return table;
}

}  // namespace

REALroutine Runtime::Resolve(const char* entryName) {
  Runtime& runtime = Current();
  const std::string name = entryName == nullptr ? "nil" : entryName;
  const auto found = Routines().find(name);
  const bool known = found != Routines().end() && !runtime.IsWithheld(name);
  runtime.Calls().Add("resolve(" + name + (known ? ")" : ") = nil"));
  if (entryName == nullptr) runtime.Book().AddViolation("The resolver was asked for no name.");
  if (!known && name == "REALGetRBVersion") runtime.reportedVersion_ = 0;
  return known ? found->second : nullptr;
}

const std::vector<std::string>& Runtime::EntryNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> sorted;
    for (const auto& [name, routine] : Routines()) sorted.push_back(name);
    return sorted;
  }();
  return names;
}

}  // namespace host
