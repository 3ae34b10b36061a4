// Calls of methods on large pictures: their result, time and memory.
#pragma once

#include <string>
#include <vector>

#include "host/plugin_library.h"
#include "tests/large/blocks.h"
#include "tests/large/pattern.h"
#include "tests/support/plugin_under_test.h"

namespace large {

inline constexpr int kWidth = 14000;
inline constexpr int kHeight = 10000;

// A host of that kind with the plug-in. Its new pictures have format 6 and padded rows (desktop),
// or gaps between their rows (console).
class Stage {
 public:
  explicit Stage(host::ApplicationKind kind,
                 const std::function<void(host::Runtime&)>& prepare = {});

  // Filled with the pattern. The format is that of a bitmap context; a console's pictures have 8.
  host::Picture* NewPicture(int width, int height, const Pattern& pattern, int format = 5,
                            bool hasAlpha = false, host::Guard guard = host::Guard::kNone);
  int ResultFormat(bool hasAlpha = false) const;  // of the host's new pictures
  bool IsDesktop() const { return kind_ == host::ApplicationKind::kDesktop; }
  host::Runtime& Host() { return plugin_.Host(); }
  host::PluginLibrary& Library() { return plugin_.Library(); }

 private:
  host::ApplicationKind kind_;
  support::LoadedPlugin plugin_;
};

struct Call {
  std::string method;
  host::Picture* receiver = nullptr;
  std::vector<host::Value> arguments;
  std::string sizes;  // for the table: "14000x10000 to 1400x1000"
};

// Makes the call and expects a balanced book, exactly these working blocks, and no other memory
// than they and the new pictures. Prints a line of the table, and records its numbers as properties
// of the test: seconds, all pictures' and the working blocks' megabytes, the process's peak.
host::CallReport Measure(Stage& stage, const Call& call, const Blocks& blocks,
                         std::size_t hostBytes = 0);

}  // namespace large
