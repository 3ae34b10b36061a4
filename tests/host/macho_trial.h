// A macOS library with a bit of everything: functions, variables, imports, initialisers, and code
// that exceptions pass through and are caught in.
#pragma once

#include "tests/host/macho_builder.h"

namespace macho_test {

// What the library exports, by its name in C.
//
//   int answer()                      42
//   int counted()                     the variable `counter`
//   int length(const char*)           by a call of `strlen`
//   int callee()                      by a call of `MachoTrialCallee` of the program
//   void through(void (*)())          calls it; has nothing to do on the way out
//   int caught(void (*)(), int*)      calls it; 1 when that threw a std::range_error, otherwise 0.
//                                     Another exception passes out. The selector that the handler
//                                     was entered with goes to the second argument.
//   int MachoTrialShared()            the same place as `answer`; the program has another one
//   int counter                       5; an initialiser adds 1 to it, another doubles it
//   void* pointers[]                  kPointers
enum Pointers {
  kToAnswer,       // rebased
  kToStrlen,       // bound
  kToStrlenPlus2,  // the same and an addend
  kMissing,        // a weak import that nobody has
  kLazily,         // `free`, bound lazily
  kOwnWeakly,      // rebased to `answer`, to be shared under the name MachoTrialShared
  kForeignWeakly,  // `strlen`, to be shared
  kNobodysWeakly,  // rebased to `answer`, to be shared under a name that nobody has
  kPersonality,
  kBeginCatch,
  kEndCatch,
  kResume,
  kTypeInfo,
  kPointerToEnded,  // the program's variable `gMachoTrialEnded`
  kPointers,
};

Library TrialLibrary();

}  // namespace macho_test

extern "C" {
int MachoTrialCallee();
int MachoTrialShared();
// Terminators: the first one adds 1, the other one doubles.
extern int gMachoTrialEnded;
}
