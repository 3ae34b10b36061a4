# Functions shared by the scripts. Sourced, not run; the caller has set -euo pipefail.

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '%s\n' "$*"; }
complain() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; }
die() { complain "$*"; exit 1; }

# Tries to build and run a 32-bit program. 0: both work; 1: it cannot be built; 2: it cannot be run.
try_32() {
  local folder status=0
  folder=$(mktemp -d)
  say '#include <string>
int main(int argc, char**) { return std::to_string(argc).size() == 1 && sizeof(void*) == 4 ? 0 : 1; }' \
    >"$folder/try.cpp"
  if ! g++ -m32 -o "$folder/try" "$folder/try.cpp" 2>/dev/null; then
    status=1
  elif ! "$folder/try" 2>/dev/null; then
    status=2
  fi
  rm -rf "$folder"
  return "$status"
}

# The product's preset where 32-bit programs run, else the machine's own word size.
product_preset() { if try_32; then say i386; else say native; fi; }

# configure_and_build PRESET [TARGET...]: quiet while all goes well; else what failed is on stderr.
# PRESET-whole builds everything in PRESET's folder, PRESET-unit the unit tests.
configure_and_build() {
  local preset=$1 configured=${1%-whole} log
  configured=${configured%-unit}
  shift
  log=$(mktemp)
  if ! { (cd "$ROOT" && cmake --preset "$configured" && cmake --build --preset "$preset" ${@:+--target "$@"}) \
      >"$log" 2>&1; }; then
    grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking) ' "$log" >&2 || true
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}
