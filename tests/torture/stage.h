// One scenario with the plug-in loaded, and calls of its method with one thing going wrong.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/oracles/image.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"
#include "tests/torture/plugin_image.h"
#include "tests/torture/scenarios.h"

namespace torture {

// What goes wrong in a call. Host calls and allocations are counted from 1 over the call; 0: none.
struct Fault {
  int entry = 0;
  bool entriesAfter = false;  // and all later host calls
  bool uncounted = false;     // the failing host call is the one that takes a reference
  int allocation = 0;
  bool allocationsAfter = false;
  std::string failingEntry = {};  // every call of this entry fails
  std::string withheld = {};      // the host has no such entry, or host method
  int thrower = 0;                // this host call throws
  int yieldThrower = 0;           // what the host does at this yield throws

  std::string Text() const;
};

// What the host throws.
class HostError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct HostCall {
  std::string entry;
  std::string line;           // as traced
  int object = 0;             // that it is about
  int allocationsBefore = 0;  // of the plug-in, within the method's call
};

// References and description locks that an object has more (or fewer) than before the call. Objects
// are numbered from 1 in the order in which the call's pictures, then the call itself, made them.
struct Holdings {
  int references = 0;
  int locks = 0;
  friend bool operator==(const Holdings&, const Holdings&) = default;
};
using HoldingsByObject = std::map<int, Holdings>;

enum class Answer { kNothing, kNil, kFalse, kTrue, kReceiver, kPicture, kThrown };

struct Outcome {
  Answer answer = Answer::kNothing;  // kNothing: the method is not registered
  std::string thrown;                // what passed out
  bool hasAlpha = false;             // of a new picture
  std::optional<oracle::Image> image;
  std::optional<oracle::Image> mask;
  oracle::Image receiver;  // afterwards; of no size for nil
  std::vector<host::RaisedException> raised;

  HoldingsByObject left;         // without the result's own reference
  HoldingsByObject owed;         // what host routines that failed without a word account for
  int refusedLocks = 0;          // of pictures whose format is refused: these stay
  std::set<std::string> failed;  // entries that failed
  std::vector<std::string> violations;
  std::vector<std::string> damage;        // pixels, padding and working memory
  std::map<std::string, int> entryCalls;  // number of calls by entry
  std::vector<HostCall> calls;            // only where asked for
  int hostCalls = 0;
  int allocations = 0;
  int yields = 0;
};

class Stage {
 public:
  // `prepare` may withhold entries, or let them fail, before the plug-in starts.
  explicit Stage(const Scenario& scenario, const std::function<void(host::Runtime&)>& prepare = {});

  Outcome Run(const Fault& fault, bool listCalls = false);

  host::Runtime& Host() { return plugin_.Host(); }
  const Scenario& Subject() const { return scenario_; }

  // The pictures of a call, as each call finds them.
  struct Pictures {
    host::Picture* receiver = nullptr;  // null for nil
    host::Picture* source = nullptr;    // the receiver, or what is drawn into it; null for nil
    host::Picture* sourceMask = nullptr;
    host::Picture* bystander = nullptr;
  };
  Pictures MakePictures();
  // Those of this stage's calls, as they were at the start.
  const Pictures& FreshPictures();
  // Gives up everything that was made since there were `objects` objects.
  void CleanUp(std::size_t objects);

 private:
  // Objects are numbered as if each call came first.
  int NumberInCall(int number) const;
  std::vector<host::Value> ArgumentsFor(const Pictures& pictures) const;
  void NoteFailure(const std::string& entry, Outcome& outcome);
  void Restore(bool touched);
  void Observe(const host::CallReport& report, Outcome& outcome) const;
  void CompareHoldings(const host::Ledger::Snapshot& before, const host::Picture* result,
                       const std::set<int>& keptBefore, const std::set<int>& kept,
                       Outcome& outcome);
  void ReadTrace(Outcome& outcome) const;
  void KeepNewObjects(std::set<int>& kept);

  Scenario scenario_;
  support::RushingClock clock_;
  support::LoadedPlugin plugin_;
  PluginImage image_{plugin_.Library().File()};
  Pictures pictures_;
  std::vector<oracle::Image> before_;  // receiver, source, mask, bystander
  std::size_t first_ = 0;              // objects before the stage's pictures
  std::size_t own_ = 0;                // objects that these are
  std::size_t base_ = 0;               // objects before the running call
};

}  // namespace torture
