#include "resample/contributions.h"

#include <cstdlib>
#include <utility>

bool ContributionLists::Resize(std::int32_t count) {
  Clear();
  if (count > capacity_) {
    heads_ = ZeroedBlock<ContributionList>();
    heads_ =
        ZeroedBlock<ContributionList>(static_cast<std::uint64_t>(count) * sizeof(ContributionList));
    capacity_ = heads_ ? count : 0;
  }
  count_ = heads_ ? count : 0;
  return static_cast<bool>(heads_);
}

void ContributionLists::Clear() {
  for (std::int32_t i = 0; i < count_; ++i) {
    std::free(std::exchange(heads_[i].entries, nullptr));
    heads_[i] = {};
  }
}
