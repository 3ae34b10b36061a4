#include "plugin/application_kind.h"

#include "plugin/wrappers.h"

std::uint8_t IsDesktop = 0;
std::uint8_t IsConsole = 0;

void ProbeApplicationKind() {
  if (IsDesktop != 0 || IsConsole != 0) return;
  const bool desktop = REALGetClassRef("Application") != nullptr;
  const bool web = REALGetClassRef("WebApplication") != nullptr;
  const bool console = REALGetClassRef("ConsoleApplication") != nullptr;
  if (desktop) {
    IsDesktop = 1;
  } else if (web || console) {
    IsConsole = 1;
  }
}
