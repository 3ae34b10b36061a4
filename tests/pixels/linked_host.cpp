#include "tests/pixels/linked_host.h"

#include <map>

#include "plugin/application_kind.h"
#include "plugin/host_state.h"
#include "tests/support/linked_plugin.h"

namespace pixels_test {

namespace {

std::map<std::string, REALroutine>& Replaced() {
  static std::map<std::string, REALroutine> replaced;
  return replaced;
}

REALroutine ResolveWithReplacements(const char* entryName) {
  const auto found = Replaced().find(entryName);
  return found != Replaced().end() ? found->second : host::Runtime::Resolve(entryName);
}

}  // namespace

LinkedHost::LinkedHost(host::RuntimeOptions options) : runtime(options) {
  Replaced().clear();
  support::StartLinkedPlugin(options.version);
  gResolver = ResolveWithReplacements;
}

LinkedHost::~LinkedHost() { support::ResetLinkedPlugin(); }

void LinkedHost::KnowKind() const {
  const host::ApplicationKind kind = runtime.Options().kind;
  IsDesktop = kind == host::ApplicationKind::kDesktop;
  IsConsole = kind == host::ApplicationKind::kConsole || kind == host::ApplicationKind::kWeb;
}

host::Picture* LinkedHost::Make(const host::PictureSpec& spec) {
  host::Picture* picture = runtime.NewPicture(spec);
  Mark();
  return picture;
}

void LinkedHost::Mark() {
  runtime.Calls().Clear();
  before_ = runtime.Book().Take();
}

Lines LinkedHost::Calls() {
  const Lines calls = runtime.Calls().Calls();
  runtime.Calls().Clear();
  return calls;
}

Lines LinkedHost::CallsAndLookUps() {
  const Lines lines = runtime.Calls().Lines();
  runtime.Calls().Clear();
  return lines;
}

Lines LinkedHost::LeftOver(const host::Object* result) const {
  // The book is only read.
  host::Ledger& book = const_cast<host::Runtime&>(runtime).Book();
  Lines sentences = book.Differences(before_, result);
  sentences.insert(sentences.end(), book.Violations().begin(), book.Violations().end());
  return sentences;
}

void LinkedHost::ReplaceEntry(const std::string& entryName, REALroutine routine) {
  Replaced()[entryName] = routine;
}

void LinkedHost::FailEntry(const std::string& entryName, int nth) {
  runtime.intercept = [entryName, nth, seen = 0](const host::EntryCall& call) mutable {
    if (call.entry != entryName) return host::Verdict::kProceed;
    ++seen;
    return nth == 0 || seen == nth ? host::Verdict::kFail : host::Verdict::kProceed;
  };
}

void LinkedHost::ThrowAtCall(int nth) {
  runtime.intercept = [nth, seen = 0](const host::EntryCall& call) mutable {
    if (++seen == nth) throw HostError(call.entry);
    return host::Verdict::kProceed;
  };
}

void LinkedHost::ThrowFrom(const std::string& entryName) {
  runtime.intercept = [entryName](const host::EntryCall& call) {
    if (call.entry == entryName) throw HostError(entryName);
    return host::Verdict::kProceed;
  };
}

host::RuntimeOptions Desktop(double version) {
  host::RuntimeOptions options;
  options.version = version;
  return options;
}

host::RuntimeOptions Console(double version) {
  host::RuntimeOptions options = Desktop(version);
  options.kind = host::ApplicationKind::kConsole;
  return options;
}

host::RuntimeOptions Unknown(double version) {
  host::RuntimeOptions options = Desktop(version);
  options.kind = host::ApplicationKind::kNone;
  return options;
}

host::PictureSpec Context(int width, int height, int alphaInfo) {
  host::PictureSpec spec;
  spec.width = width;
  spec.height = height;
  spec.pixelFormat = alphaInfo;
  return spec;
}

host::PictureSpec Buffer(int width, int height) {
  host::PictureSpec spec = Context(width, height);
  spec.storage = host::Storage::kHostBuffer;
  return spec;
}

host::PictureSpec AlphaContext(int width, int height, int alphaInfo) {
  host::PictureSpec spec = Context(width, height, alphaInfo);
  spec.hasAlphaChannel = true;
  return spec;
}

std::string FindsDrawPicture(const std::string& graphics) {
  return "REALLoadObjectMethod(" + graphics +
         ", \"DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as "
         "Integer, "
         "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)\") "
         "= DrawPicture";
}

std::string LacksDrawPicture(const std::string& graphics) {
  std::string line = FindsDrawPicture(graphics);
  return line.replace(line.rfind("DrawPicture"), std::string::npos, "nil");
}

void Number(host::Picture& picture) {
  for (int y = 0; y < picture.Height(); ++y) {
    for (int x = 0; x < picture.Width(); ++x) picture.SetWord(x, y, NumberAt(x, y));
  }
}

}  // namespace pixels_test
