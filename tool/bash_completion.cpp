#include <algorithm>

#include "tool/shell_completion.h"

namespace tool {
namespace {

// "--kind=web" comes as three words, and so does "width=400".
constexpr const char* kStart = R"(# bash completion of picturehost, printed by the tool itself.
_picturehost() {
  local tool=${COMP_WORDS[0]/#\~\//$HOME/} current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}
  local command='' option='' words='' options='' valued='' place=0 at word
  COMPREPLY=()
  if [[ $current == = ]]; then
    current=''
  elif [[ $before == = ]]; then
    before=${COMP_WORDS[COMP_CWORD-2]}
  fi
  for ((at = 1; at < COMP_CWORD; at++)); do
    word=${COMP_WORDS[at]}
    if [[ $word != -* ]]; then
      command=$word
      break
    fi
  done
)";

// Counts the arguments before the current word, then offers options or what belongs to its place.
constexpr const char* kEnd = R"(
  for ((at++; at < COMP_CWORD; at++)); do
    word=${COMP_WORDS[at]}
    if [[ ${COMP_WORDS[at+1]-} == = ]]; then
      ((at += 2))
      if [[ $word != -* ]] && ((at < COMP_CWORD)); then ((place++)); fi
    elif [[ $word != -* ]]; then
      ((place++))
    elif [[ " $valued " == *" $word "* ]]; then
      ((at++))
    fi
  done
  if [[ " $valued " == *" $before "* ]]; then
    option=$before
  elif [[ $current == -* ]]; then
    COMPREPLY=($(compgen -W "$options" -- "$current"))
    return
  fi
  case $command:${option:-$place} in
)";

constexpr const char* kFinish = R"(    *) return ;; # files, by the shell itself
  esac
  COMPREPLY=($(compgen -W "$words" -- "$current"))
}
complete -o bashdefault -o default -F _picturehost picturehost
)";

// What happens at a place: fills `words`, or answers with folders.
std::string Answer(const OptionEntry& option) {
  switch (CompletionOf(option)) {
    case Completion::kNothing:
      return "compopt +o default 2>/dev/null; return";
    case Completion::kWords:
      return "words='" + Joined(WordsOf(option)) + "'";
    case Completion::kFolders:
      return "compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -d -- "
             "\"$current\"); return";
    case Completion::kMethods:
      return "words=$(" + ListMethods("\"$tool\"") +
             ")\n      for word in \"${COMP_WORDS[@]:0:COMP_CWORD}\"; do\n"
             "        [[ $'\\n'$words$'\\n' != *$'\\n'\"$word\"$'\\n'* ]] || return\n      done";
    case Completion::kChecks:
      return "words=$(" + ListChecks("\"$tool\"") + ")";
    case Completion::kFiles:
      break;
  }
  return {};
}

std::string Places(const CommandEntry& command) {
  std::string text;
  const std::string start = "    " + command.OwnName() + ":";
  for (const OptionEntry& option : command.options) {
    const std::string answer = Answer(option);
    if (option.value.empty() || answer.empty()) continue;
    std::string pattern;
    for (const std::string& name : option.names) {
      pattern += (pattern.empty() ? start : "|" + start.substr(4)) + name;
    }
    text += pattern + ") " + answer + " ;;\n";
  }
  for (std::size_t place = 0; place < command.arguments.size(); ++place) {
    const OptionEntry& argument = command.arguments[place];
    const std::string answer = Answer(argument);
    if (answer.empty()) continue;
    std::string which = argument.repeats ? "*" : std::to_string(place);
    // More pictures may stand before the method.
    if (CompletionOf(argument) == Completion::kMethods) which = "[1-9]*";
    text += start + which + ") " + answer + " ;;\n";
  }
  return text;
}

}  // namespace

std::string BashCompletion(const CommandEntry& tool) {
  std::vector<std::string> words = NamesOf(tool.options);
  for (const CommandEntry& command : tool.commands) words.push_back(command.OwnName());
  std::string text = kStart;
  text += "  case $command in\n    '')\n      words='" + Joined(words) + "'\n";
  text += "      COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n      return\n      ;;\n";
  for (const CommandEntry& command : tool.commands) {
    text += "    " + command.OwnName() + ")\n";
    text += "      options='" + Joined(NamesOf(command.options)) + "'\n";
    text += "      valued='" + Joined(NamesOf(command.options, true)) + "'\n      ;;\n";
  }
  text += "  esac\n";
  text += kEnd;
  for (const CommandEntry& command : tool.commands) text += Places(command);
  text += kFinish;
  return text;
}

}  // namespace tool
