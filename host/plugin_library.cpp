// Loading, calling, unloading.
#include "host/plugin_library.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/call_arguments.h"

namespace host {

namespace {

constexpr char kExport[] = "REALPluginMain";

// Marks the method that runs, also while an exception passes.
class RunningMethod {
 public:
  RunningMethod(Runtime& runtime, const std::string& name) : runtime_(runtime) {
    runtime_.EnterMethod(name);
  }
  ~RunningMethod() { runtime_.LeaveMethod(); }
  RunningMethod(const RunningMethod&) = delete;
  RunningMethod& operator=(const RunningMethod&) = delete;

 private:
  Runtime& runtime_;
};

// The picture behind a returned handle; a handle that is not a living picture is a violation.
Value ReturnedPicture(Runtime& runtime, const std::string& method, std::uintptr_t handle) {
  if (handle == 0) return std::monostate();
  Object* object = runtime.Book().Find(reinterpret_cast<const void*>(handle));
  if (object == nullptr) {
    runtime.Book().AddViolation(method + " returned a handle that the host never gave out.");
    return std::monostate();
  }
  auto* picture = dynamic_cast<Picture*>(object);
  if (picture == nullptr || !object->Alive()) {
    runtime.Book().AddViolation(
        method + " returned " + object->Name() +
        (picture == nullptr ? ", which is no picture." : ", whose last reference is gone."));
    return std::monostate();
  }
  return picture;
}

Value Returned(Runtime& runtime, const Declaration& declaration, const NativeResult& result) {
  switch (declaration.result) {
    case Type::kInteger:
      return static_cast<std::int32_t>(static_cast<std::uint32_t>(result.word));
    case Type::kDouble:
      return result.number;
    case Type::kBoolean:
      return result.word != 0;
    case Type::kPicture:
      return ReturnedPicture(runtime, declaration.name, result.word);
    case Type::kNone:
    case Type::kString:
    case Type::kOther:
      break;
  }
  return std::monostate();
}

}  // namespace

Picture* CallReport::ResultPicture() const {
  Picture* const* picture = std::get_if<Picture*>(&result);
  return picture == nullptr ? nullptr : *picture;
}

PluginLibrary::PluginLibrary(Runtime& runtime, const std::string& path)
    : runtime_(runtime), file_(LoadFile(path)) {
  void* start = file_->Find(kExport);
  if (start == nullptr) throw std::runtime_error(path + ": does not export " + kExport);
  runtime_.Registered() = Registration();
  const RunningMethod running(runtime_, kExport);
  reinterpret_cast<void (*)(REALresolver)>(start)(Runtime::Resolve);
}

const RegisteredMethod* PluginLibrary::Find(const std::string& name) const {
  for (const RegisteredMethod& method : runtime_.Registered().methods) {
    if (SameName(method.declaration.name, name)) return &method;
  }
  return nullptr;
}

CallReport PluginLibrary::Call(const std::string& name, Picture* receiver,
                               const std::vector<Value>& arguments) {
  const RegisteredMethod* found = Find(name);
  if (found == nullptr) throw std::invalid_argument("there is no method \"" + name + "\"");
  // A copy, because the method may lead to another registration.
  const RegisteredMethod method = *found;
  const Declaration& declaration = method.declaration;
  const bool returnsUnknown =
      declaration.result == Type::kString || declaration.result == Type::kOther;
  if (returnsUnknown) throw std::invalid_argument(declaration.name + " has an unknown result type");
  const std::vector<NativeArgument> native = NativeArguments(method, receiver, arguments);

  Ledger& book = runtime_.Book();
  const Ledger::Snapshot before = book.Take();
  const std::size_t violationsBefore = book.Violations().size();
  CallReport report;
  {
    const RunningMethod running(runtime_, declaration.name);
    const NativeResult result = CallNative(method.routine, native, declaration.result);
    report.result = Returned(runtime_, declaration, result);
  }
  report.leftOver = book.Differences(before, report.ResultPicture());
  const std::vector<std::string>& violations = book.Violations();
  const std::size_t first = std::min(violationsBefore, violations.size());
  report.violations.assign(violations.begin() + static_cast<std::ptrdiff_t>(first),
                           violations.end());
  return report;
}

}  // namespace host
