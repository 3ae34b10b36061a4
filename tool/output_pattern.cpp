#include "tool/output_pattern.h"

#include <filesystem>
#include <functional>
#include <map>

#include "tool/exit_status.h"
#include "tool/suggestion.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kPlaceholders = {"{name}", "{ext}", "{index}"};

// Calls `put` with each piece of the text in turn: what is in braces, with them, and what is not.
void ForPieces(const std::string& text, const std::function<void(const std::string&)>& put) {
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t open = text.find('{', at);
    const std::size_t close = open == std::string::npos ? open : text.find('}', open);
    if (close == std::string::npos) break;
    if (open > at) put(text.substr(at, open - at));
    put(text.substr(open, close + 1 - open));
    at = close + 1;
  }
  if (at < text.size()) put(text.substr(at));
}

void CheckPlaceholders(const std::string& pattern) {
  bool any = false;
  ForPieces(pattern, [&](const std::string& piece) {
    if (piece[0] != '{') return;
    any = true;
    for (const std::string& known : kPlaceholders) {
      if (piece == known) return;
    }
    throw UsageError("'" + piece + "' in the output's name '" + pattern +
                     "' is none of {name}, {ext} and {index}" + DidYouMean(piece, kPlaceholders));
  });
  if (!any) {
    throw UsageError("several pictures need several outputs: put {name} or {index} into '" +
                     pattern + "'");
  }
}

// The same for all names of a file, whether it is there or not.
fs::path FileBehind(const std::string& name) {
  std::error_code error;
  const fs::path path = fs::weakly_canonical(fs::absolute(name), error);
  return error ? fs::absolute(name).lexically_normal() : path;
}

}  // namespace

std::string OutputName(const std::string& pattern, const std::string& input, std::size_t index,
                       std::size_t count) {
  const fs::path path(input);
  const std::string ending = path.extension().string();
  std::string place = std::to_string(index);
  place.insert(0, std::to_string(count).size() - place.size(), '0');
  std::string name;
  ForPieces(pattern, [&](const std::string& piece) {
    if (piece == "{name}") {
      name += path.stem().string();
    } else if (piece == "{ext}") {
      name += ending.empty() ? ending : ending.substr(1);
    } else {
      name += piece == "{index}" ? place : piece;
    }
  });
  return name;
}

std::vector<std::string> OutputNames(const std::string& pattern,
                                     const std::vector<std::string>& inputs,
                                     const std::vector<std::string>& alsoRead) {
  CheckPlaceholders(pattern);
  std::map<fs::path, std::string> read;
  for (const std::string& input : inputs) read.emplace(FileBehind(input), input);
  for (const std::string& other : alsoRead) read.emplace(FileBehind(other), other);
  std::map<fs::path, std::string> writers;
  std::vector<std::string> outputs;
  for (const std::string& input : inputs) {
    outputs.push_back(OutputName(pattern, input, outputs.size() + 1, inputs.size()));
    const std::string& output = outputs.back();
    const fs::path file = FileBehind(output);
    if (read.contains(file)) {
      throw UsageError("the output '" + output + "' of '" + input +
                       "' would replace a picture that is read, '" + read[file] + "'");
    }
    const auto [writer, isFirst] = writers.emplace(file, input);
    if (!isFirst) {
      throw UsageError("'" + writer->second + "' and '" + input + "' would both be saved as '" +
                       output + "'; {index} tells outputs apart");
    }
  }
  return outputs;
}

}  // namespace tool
