// Entries for registration, the host's version and yielding.
#include <sstream>

#include "host/entry_tables.h"
#include "host/kept_records.h"
#include "host/readable_memory.h"

namespace host {

namespace {

using Kind = EntryScope::Kind;

template <typename Record>
std::string ShownName(const Record* record, const char* Record::*name) {
  if (!IsReadable(record, sizeof *record)) return "unreadable";
  return "\"" + ReadableText(record->*name).value_or("") + "\"";
}

bool Accept(EntryScope& call, const void* record, std::size_t size) {
  if (call.Failed()) return false;
  ++call.Host().Registered().calls;
  if (IsReadable(record, size)) return true;
  call.Host().Registered().problems.push_back("A registration record cannot be read.");
  return false;
}

void RegisterModule(REALmoduleDefinition* module) {
  EntryScope call("PluginRegisterModule", Kind::kNoResult,
                  Listed("PluginRegisterModule", {ShownName(module, &REALmoduleDefinition::name)}));
  if (!Accept(call, module, sizeof *module)) return;
  KeepRecord(module);
  ReadModule(*module, call.Host().Registered());
}

void RegisterClassExtension(REALclassDefinition* definition) {
  EntryScope call("PluginRegisterClassExtension", Kind::kNoResult,
                  Listed("PluginRegisterClassExtension",
                         {ShownName(definition, &REALclassDefinition::className)}));
  if (!Accept(call, definition, sizeof *definition)) return;
  KeepRecord(*definition);
  ReadClassExtension(*definition, call.Host().Registered());
}

void RegisterPluginVersion(std::int32_t recordVersion) {
  EntryScope call("RegisterPluginVersion", Kind::kNoResult,
                  Listed("RegisterPluginVersion", {Shown(recordVersion)}));
  if (call.Failed()) return;
  Registration& registration = call.Host().Registered();
  registration.announcedVersion = recordVersion;
  if (recordVersion > NewestRecordVersion(call.Host().ReportedVersion())) {
    registration.problems.push_back("The announced record version " +
                                    std::to_string(recordVersion) +
                                    " is newer than this host knows.");
  }
}

double GetVersion() {
  EntryScope call("REALGetRBVersion", Kind::kHasResult, Listed("REALGetRBVersion", {}));
  const double version = call.Failed() ? 0.0 : call.Host().Options().version;
  Entries::SetReportedVersion(call.Host(), version);
  std::ostringstream shown;
  shown.precision(12);
  shown << version;
  call.NoteResult(shown.str());
  return version;
}

void Yield() {
  EntryScope call("REALYieldToRB", Kind::kNoResult, Listed("REALYieldToRB", {}));
  if (call.Failed()) return;
  Entries::CountYield(call.Host());
  if (call.Host().onYield) call.Host().onYield();
}

// Plug-ins ask for its address and never call it.
void GraphicsDrawPicture() {
  EntryScope call("RuntimeGraphicsDrawPicture", Kind::kNoResult,
                  Listed("RuntimeGraphicsDrawPicture", {}));
  call.AddViolation("it must not be called.");
}

const EntryRow kRows[] = {
    {"PluginRegisterModule", RoutineOf<PluginRegisterModuleEntry>(RegisterModule)},
    {"PluginRegisterClassExtension",
     RoutineOf<PluginRegisterClassExtensionEntry>(RegisterClassExtension)},
    {"RegisterPluginVersion", RoutineOf<RegisterPluginVersionEntry>(RegisterPluginVersion)},
    {"REALGetRBVersion", RoutineOf<REALGetRBVersionEntry>(GetVersion)},
    {"REALYieldToRB", RoutineOf<REALYieldToRBEntry>(Yield)},
    {"RuntimeGraphicsDrawPicture", RoutineOf<void()>(GraphicsDrawPicture)},
};

}  // namespace

std::span<const EntryRow> RegistrationEntries() { return kRows; }

}  // namespace host
