// Which of the words of picturehost run are pictures, which the method, which its arguments.
#pragma once

#include <string>
#include <vector>

#include "host/declaration.h"

namespace tool {

struct RunWords {
  std::vector<std::string> inputs;  // at least one
  host::Declaration method;
  std::vector<std::string> arguments;
};

// Whether the word can stand for a picture: a file of that name is there, or no method can have it.
bool MayBeInput(const std::string& word);

// The first word is a picture; so are those that follow until one names a method, in any letter
// case. Throws UsageError with one line when none does.
RunWords Divide(const std::vector<std::string>& words,
                const std::vector<host::Declaration>& methods);

}  // namespace tool
