// Times what other libraries do that comes nearest to each kind of work, at their fastest settings
// for equal work and in one thread.
#include "bench/peers/peer.h"

#include <chrono>
#include <map>
#include <utility>

#include "bench/worker.h"

namespace bench {

namespace {

std::vector<Peer>& Peers() {
  static std::vector<Peer> peers;
  return peers;
}

// One work at a time is kept, with the act of every peer that was asked for it.
class Stage {
 public:
  const Act& ActOf(const Peer& peer, const Work& work) {
    if (words_ != work.words) {
      acts_.clear();
      scene_ = {};
      scene_ = {Pixels(work.sourceWidth, work.sourceHeight), Pixels(work.width, work.height)};
      words_ = work.words;
    }
    const auto found = acts_.find(peer.name);
    if (found != acts_.end()) return found->second;
    return acts_[peer.name] = peer.prepare(work, scene_);
  }

 private:
  std::string words_;
  Scene scene_;
  std::map<std::string, Act> acts_;
};

Taken Time(const Act& act) {
  if (!act) return {Outcome::kNothing};
  const long faults = PageFaults();
  const auto start = std::chrono::steady_clock::now();
  act();
  const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - start;
  return {Outcome::kDone, passed.count(), PageFaults() - faults};
}

}  // namespace

bool Register(std::vector<Peer> peers) {
  for (Peer& peer : peers) Peers().push_back(std::move(peer));
  return true;
}

bool TakesNearest(const Work& work) {
  return !work.Shrinks() && (work.kind == Kind::kFast || work.Resamples(2));
}

bool InterpolatesRow(const Work& work) { return work.kind == Kind::kFast && work.Shrinks(); }

bool Interpolates(const Work& work) {
  return work.kind == Kind::kSmooth || (work.Resamples(1) && !work.Shrinks());
}

bool WeighsTriangle(const Work& work) { return work.kind == Kind::kSmooth || work.Resamples(1); }

bool Averages(const Work& work) { return work.Resamples(2) && work.Shrinks(); }

bool WeighsCubic(const Work& work) { return work.Resamples(5) || work.Resamples(6); }

bool WeighsSix(const Work& work) { return work.Resamples(3) || work.Resamples(7); }

bool WeighsSixteen(const Work& work) { return work.Resamples(4); }

}  // namespace bench

int main() {
  bench::Stage stage;
  std::vector<bench::Candidate> candidates;
  for (const bench::Peer& peer : bench::Peers()) {
    candidates.push_back(
        {peer.name, [&](const bench::Work& work) { return bench::Time(stage.ActOf(peer, work)); }});
  }
  return bench::Serve(candidates);
}
