// Small readings of the book, the trace and pictures, for stages.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/torture/stage.h"

namespace torture {

// References that keep an object alive whatever is given up wrongly.
inline constexpr int kKeeping = 8;

// References that belong to no other object, and locks.
inline Holdings FreeHoldings(const std::vector<host::Ledger::Holding>& held) {
  Holdings sum;
  for (const auto& holding : held) {
    if (holding.isLock) ++sum.locks;
    if (!holding.isLock && holding.owner == nullptr) ++sum.references;
  }
  return sum;
}

// The number behind the first '#' of a trace line, which is the object it is about; 0 if none.
inline int ObjectNumber(const std::string& line) {
  const std::size_t place = line.find('#');
  // NOLINTNEXTLINE(cert-err34-c): the trace writes a number there that fits.
  return place == std::string::npos ? 0 : std::atoi(line.c_str() + place + 1);
}

// Of no size for no picture and for one that is gone.
inline oracle::Image ImageOrNone(const host::Picture* picture) {
  return picture != nullptr && picture->Alive() ? support::ImageOf(*picture) : oracle::Image();
}

}  // namespace torture
