#include <algorithm>

#include "tool/help_text.h"
#include "tool/shell_completion.h"

namespace tool {
namespace {

// Within single quotes.
std::string Quoted(const std::string& text) {
  std::string quoted;
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return "'" + quoted + "'";
}

// `text` with a backslash before each of `special`.
std::string Escaped(const std::string& text, const std::string& special) {
  std::string escaped;
  for (const char c : text) {
    if (special.find(c) != std::string::npos) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

// ":OUT:_files", as _arguments wants it.
std::string ValuePart(const OptionEntry& option) {
  const std::string start = ":" + Escaped(option.Wanted(), ":\\") + ":";
  switch (CompletionOf(option)) {
    case Completion::kNothing:
      return start + " ";
    case Completion::kWords:
      return start + "(" + Joined(WordsOf(option)) + ")";
    case Completion::kFolders:
      return start + "_files -/";
    case Completion::kMethods:
      return start + "_picturehost_methods";
    case Completion::kChecks:
      return start + "_picturehost_checks";
    case Completion::kFiles:
      break;
  }
  return start + "_files";
}

// One word for _arguments for each option; the names of one option exclude each other.
std::string OptionSpecs(const OptionEntry& option, const std::string& indent) {
  const std::string purpose = "[" + Escaped(OptionText(option), "[]:\\") + "]";
  const bool endsAll = option.names.back() == "--help" || option.names.back() == "--version";
  const std::string excluded = endsAll ? "(- *)" : "(" + Joined(option.names) + ")";
  std::string specs;
  for (const std::string& name : option.names) {
    const bool isLong = name.rfind("--", 0) == 0;
    const std::string sign = option.value.empty() ? "" : isLong ? "=" : "+";
    specs += indent +
             Quoted(excluded + name + sign + purpose + (sign.empty() ? "" : ValuePart(option))) +
             " \\\n";
  }
  return specs;
}

std::string Specs(const CommandEntry& command, const std::string& indent) {
  std::string specs;
  for (const OptionEntry& option : command.options) specs += OptionSpecs(option, indent);
  for (const OptionEntry& argument : command.arguments) {
    specs += indent + Quoted((argument.repeats ? "*" : "") + ValuePart(argument)) + " \\\n";
  }
  return specs.substr(0, specs.size() - 3) + "\n";
}

std::string Lister(const std::string& name, const std::string& list) {
  return "_picturehost_" + name + "() {\n  local -a found\n  found=(${(f)\"$(" + list +
         ")\"})\n  compadd -M 'm:{a-zA-Z}={A-Za-z}' -a found || _files\n}\n\n";
}

}  // namespace

std::string ZshCompletion(const CommandEntry& tool) {
  std::string text =
      "#compdef picturehost\n# zsh completion of picturehost, printed by the tool itself.\n\n";
  text += Lister("methods", ListMethods("$picturehost"));
  text += Lister("checks", ListChecks("$picturehost"));
  text += "_picturehost() {\n  local context state state_descr line picturehost=$words[1]\n";
  text += "  typeset -A opt_args\n  _arguments -C \\\n";
  for (const OptionEntry& option : tool.options) text += OptionSpecs(option, "    ");
  text += "    '1:command:->command' \\\n    '*::argument:->argument' && return\n";
  text += "  case $state in\n    command)\n      local -a commands\n      commands=(\n";
  for (const CommandEntry& command : tool.commands) {
    text += "        " + Quoted(command.OwnName() + ":" + Escaped(command.purpose, ":\\")) + "\n";
  }
  text += "      )\n      _describe -t commands command commands\n      ;;\n";
  text += "    argument)\n      case $words[1] in\n";
  for (const CommandEntry& command : tool.commands) {
    text += "        " + command.OwnName() + ")\n          _arguments -s -S \\\n" +
            Specs(command, "            ") + "          ;;\n";
  }
  return text + "      esac\n      ;;\n  esac\n}\n\n_picturehost \"$@\"\n";
}

}  // namespace tool
