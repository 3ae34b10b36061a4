// Native calls without assembly. Both conventions pass arguments in places that depend on the kinds
// of the arguments only, so a call through a function type that fills every such place reaches a
// routine of any shape; the places that it does not read hold noise.
#include "host/native_call.h"

#include <array>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "host/noise.h"

namespace host {

namespace {

constexpr std::size_t kStackWords = 24;

template <std::size_t>
using Word = std::uintptr_t;
template <std::size_t>
using Number = double;

#if defined(__i386__)

// i386, cdecl: every argument lies on the stack in 32-bit words, in order, a double in two of them
// (low word first), and the caller takes them away again. An integer result comes in eax, a double
// in the floating-point stack's top.
struct Places {
  std::array<std::uintptr_t, kStackWords> stack;
  std::size_t used = 0;

  void Put(std::uintptr_t word) {
    if (used == stack.size()) throw std::invalid_argument("too many arguments for a native call");
    stack[used++] = word;
  }
  void Put(double number) {
    std::uintptr_t words[2];
    static_assert(sizeof words == sizeof number);
    std::memcpy(words, &number, sizeof words);
    Put(words[0]);
    Put(words[1]);
  }
};

template <typename Result, std::size_t... kStack>
Result Call(REALroutine routine, const Places& places, std::index_sequence<kStack...>) {
  const auto function = reinterpret_cast<Result (*)(Word<kStack>...)>(routine);
  return function(places.stack[kStack]...);
}

template <typename Result>
Result Call(REALroutine routine, const Places& places) {
  return Call<Result>(routine, places, std::make_index_sequence<kStackWords>());
}

void FillWithNoise(Places& places) {
  for (std::size_t i = 0; i < kStackWords; ++i) places.stack[i] = NoiseWord(i);
}

#elif defined(__x86_64__)

// x86-64, System V: the first six integers or pointers go to six registers, the first eight doubles
// to eight others, whatever their order among each other; the rest lies on the stack in order, in
// slots of 8 bytes. An integer result comes in rax, a double in xmm0.
struct Places {
  std::array<std::uintptr_t, 6> words;
  std::array<double, 8> numbers;
  std::array<std::uintptr_t, kStackWords> stack;
  std::size_t usedWords = 0, usedNumbers = 0, used = 0;

  void PutOnStack(std::uintptr_t word) {
    if (used == stack.size()) throw std::invalid_argument("too many arguments for a native call");
    stack[used++] = word;
  }
  void Put(std::uintptr_t word) {
    if (usedWords < words.size()) {
      words[usedWords++] = word;
    } else {
      PutOnStack(word);
    }
  }
  void Put(double number) {
    if (usedNumbers < numbers.size()) {
      numbers[usedNumbers++] = number;
    } else {
      std::uintptr_t word = 0;
      std::memcpy(&word, &number, sizeof word);
      PutOnStack(word);
    }
  }
};

template <typename Result, std::size_t... kWords, std::size_t... kNumbers, std::size_t... kStack>
Result Call(REALroutine routine, const Places& places, std::index_sequence<kWords...>,
            std::index_sequence<kNumbers...>, std::index_sequence<kStack...>) {
  const auto function =
      reinterpret_cast<Result (*)(Word<kWords>..., Number<kNumbers>..., Word<kStack>...)>(routine);
  return function(places.words[kWords]..., places.numbers[kNumbers]..., places.stack[kStack]...);
}

template <typename Result>
Result Call(REALroutine routine, const Places& places) {
  return Call<Result>(routine, places, std::make_index_sequence<6>(), std::make_index_sequence<8>(),
                      std::make_index_sequence<kStackWords>());
}

void FillWithNoise(Places& places) {
  for (std::size_t i = 0; i < places.words.size(); ++i) places.words[i] = NoiseWord(i);
  places.numbers.fill(-1.0e300);
  for (std::size_t i = 0; i < kStackWords; ++i) places.stack[i] = NoiseWord(100 + i);
}

#else
#error "Native calls are known for i386 and x86-64 only."
#endif

}  // namespace

NativeResult CallNative(REALroutine routine, const std::vector<NativeArgument>& arguments,
                        Type result) {
  Places places;
  FillWithNoise(places);
  for (const NativeArgument& argument : arguments) {
    if (argument.isDouble) {
      places.Put(argument.number);
    } else {
      places.Put(argument.word);
    }
  }
  NativeResult answer;
  if (result == Type::kDouble) {
    answer.number = Call<double>(routine, places);
  } else {
    answer.word = Call<std::uintptr_t>(routine, places);
  }
  if (result == Type::kBoolean) answer.word = (answer.word & 0xFF) != 0 ? 1 : 0;
  return answer;
}

}  // namespace host
