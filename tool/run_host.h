// Calls a method on a picture file and saves what comes out: the host and the plug-in in this
// process.
#pragma once

#include <functional>
#include <memory>

#include "host/plugin_library.h"
#include "tool/argument_parsing.h"
#include "tool/run_options.h"
#include "tool/run_outcome.h"

namespace tool {

class RunHost {
 public:
  // Loads the plug-in. `options` must live as long as this object. Throws UsageError when there is
  // no plug-in, std::runtime_error when it cannot be loaded.
  explicit RunHost(const RunOptions& options);

  // By name in any letter case; null when the plug-in has no such method.
  const host::Declaration* Find(const std::string& method) const;
  // Of all methods, as registered.
  std::vector<host::Declaration> Declarations();

  // Reads the input, calls the method, saves the output; throws nothing. `beforeCall` gets the
  // outcome so far. While a method works, InterruptibleCall says what signals do. On a terminal
  // the time passed is shown, unless the options want it quiet.
  RunOutcome Run(const std::string& input, const std::string& output,
                 const host::Declaration& method, const Arguments& arguments,
                 const std::function<void(const RunOutcome&)>& beforeCall);

 private:
  void RunInto(RunOutcome& outcome, const host::Declaration& method, Arguments arguments,
               const std::function<void(const RunOutcome&)>& beforeCall);
  host::CallReport Call(RunOutcome& outcome, const host::Declaration& method,
                        host::Picture* receiver, Arguments& arguments);
  host::Picture* Load(const std::string& path, bool isMasked);
  std::vector<host::Value> Load(const Arguments& arguments);

  const RunOptions& options_;
  host::Runtime runtime_;
  PluginFile file_;
  std::unique_ptr<host::PluginLibrary> plugin_;
};

// The files that picture arguments name.
std::vector<std::string> PicturesIn(const Arguments& arguments);

}  // namespace tool
