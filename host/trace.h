// Every host call of a plug-in in order, as text.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace host {

// One line per call: "REALLockPictureDescription(Picture#1, 8) = 1"; handles by their names, null
// as "nil", texts in quotes, calls without result without " = ...". Calls of host methods found by
// declaration appear by their name: "Graphics#4.DrawPicture(Picture#1, 0, 0, 4, 3, 0, 0, 4, 3)".
// Reads of properties show the value read, integers in decimal, Booleans as "true" or "false", and
// "failed" when there was none: "REALGetPropValueInteger(Picture#1, "Width") = 150".
// Look-ups of entry names appear as "resolve(name)" with " = nil" when the host lacks it.
class Trace {
 public:
  void Add(std::string line);
  const std::vector<std::string>& Lines() const { return lines_; }
  // The lines without the look-ups.
  std::vector<std::string> Calls() const;
  void Clear() { lines_.clear(); }
  // Called with each line as it is added.
  std::function<void(const std::string&)> onLine;

 private:
  std::vector<std::string> lines_;
};

}  // namespace host
