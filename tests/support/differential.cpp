#include "tests/support/differential.h"

#include "tests/oracles/image.h"

namespace support {

using host::ApplicationKind;

std::string RunCells(const std::vector<DifferentialCell>& cells, std::uint32_t seed,
                     Coverage& covered) {
  for (const DifferentialCell& cell : cells) {
    Random random(++seed);
    LoadedPlugin plugin(cell.options(random));
    for (int k = 0; k < cell.cases; ++k) {
      const std::string difference = cell.run(plugin, random);
      if (!difference.empty()) {
        return cell.row + ", " + cell.column + ", seed " + std::to_string(seed) + ", case " +
               std::to_string(k) + ": " + difference;
      }
      covered.Count(cell.row, cell.column);
    }
  }
  return "";
}

std::vector<int> FormatsOf(ApplicationKind kind, bool alpha) {
  if (kind == ApplicationKind::kWeb || kind == ApplicationKind::kConsole) {
    return {oracle::kHostBuffer};
  }
  if (alpha) return {1, 2};
  return {1, 2, 3, 4, 5, 6};
}

std::string FormatPair::Name() const {
  return KindNames().at(kind) + (alpha ? " alpha " : " opaque ") + std::to_string(source) + " -> " +
         std::to_string(result);
}

std::vector<FormatPair> AllFormatPairs(bool resultKeepsAlpha) {
  std::vector<FormatPair> pairs;
  for (const auto& [kind, name] : KindNames()) {
    for (const bool alpha : {false, true}) {
      for (const int source : FormatsOf(kind, alpha)) {
        for (const int result : FormatsOf(kind, alpha && resultKeepsAlpha)) {
          pairs.push_back({kind, alpha, source, result});
        }
      }
    }
  }
  return pairs;
}

host::PictureSpec AnyMemory(Random& random, bool hasAlphaChannel) {
  host::PictureSpec spec;
  spec.rowPadding = 4 * random.Between(0, 5);
  spec.guard = random.AnyGuard();
  spec.hasAlphaChannel = hasAlphaChannel;
  return spec;
}

}  // namespace support
