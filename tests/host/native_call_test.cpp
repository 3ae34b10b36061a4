#include "host/native_call.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "host/entry_scope.h"

namespace host {
namespace {

NativeArgument W(std::uintptr_t word) {
  NativeArgument argument;
  argument.word = word;
  return argument;
}

NativeArgument D(double number) {
  NativeArgument argument;
  argument.isDouble = true;
  argument.number = number;
  return argument;
}

std::uintptr_t CallWord(REALroutine routine, const std::vector<NativeArgument>& arguments) {
  return CallNative(routine, arguments, Type::kInteger).word;
}

double CallNumber(REALroutine routine, const std::vector<NativeArgument>& arguments) {
  return CallNative(routine, arguments, Type::kDouble).number;
}

// Decimal digits, most significant first, so that every order of arguments gives another number.
double Digits(std::initializer_list<double> digits) {
  double number = 0;
  for (const double digit : digits) number = number * 10 + digit;
  return number;
}

double NineWords(int a, int b, int c, int d, int e, int f, int g, int h, int i) {
  return Digits({double(a), double(b), double(c), double(d), double(e), double(f), double(g),
                 double(h), double(i)});
}

double TwelveNumbers(double a, double b, double c, double d, double e, double f, double g, double h,
                     double i, double j, double k, double l) {
  return Digits({a, b, c, d, e, f, g, h, i, j, k, l});
}

// More of each kind than there are registers for it.
double Mixed(double a, int b, double c, int d, double e, int f, double g, int h, double i, int j,
             double k, int l, double m, int n, double o, int p, double q, int r) {
  return Digits({a, double(b), c, double(d), e, double(f), g, double(h), i}) +
         1e9 * Digits({double(j), k, double(l), m, double(n), o, double(p), q, double(r)});
}

int NoArguments() { return -5; }
std::int64_t* Same(std::int64_t* pointer) { return pointer; }
double Negated(double number) { return -number; }
bool IsPositive(double number) { return number > 0; }
std::uintptr_t NoisyTruth() { return 0x7F00; }
void Throws() { throw std::range_error("thrown"); }

TEST(NativeCall, WordsArriveInOrder) {
  std::vector<NativeArgument> arguments;
  for (std::uintptr_t i = 1; i <= 9; ++i) arguments.push_back(W(i));
  EXPECT_EQ(CallNumber(RoutineOf(NineWords), arguments), 123456789.0);
}

TEST(NativeCall, NumbersArriveInOrder) {
  std::vector<NativeArgument> arguments;
  for (int i = 1; i <= 12; ++i) arguments.push_back(D(i % 10));
  EXPECT_EQ(CallNumber(RoutineOf(TwelveNumbers), arguments), 123456789012.0);
}

TEST(NativeCall, MixedArgumentsArriveInOrder) {
  std::vector<NativeArgument> arguments;
  for (unsigned i = 1; i <= 18; ++i) {
    const unsigned digit = (i - 1) % 9 + 1;
    arguments.push_back(i % 2 == 1 ? D(digit) : W(digit));
  }
  if (sizeof(void*) == 4) {
    EXPECT_THROW(CallNumber(RoutineOf(Mixed), arguments), std::invalid_argument) << "27 words";
  } else {
    EXPECT_EQ(CallNumber(RoutineOf(Mixed), arguments), 123456789123456789.0);
  }
}

double MixedFourteen(int a, double b, int c, double d, int e, double f, int g, double h, int i,
                     double j, int k, double l, int m, double n) {
  return Digits({double(a), b, double(c), d, double(e), f, double(g), h, double(i), j, double(k), l,
                 double(m), n});
}

TEST(NativeCall, MixedArgumentsArriveInOrderInBothWordSizes) {
  std::vector<NativeArgument> arguments;
  for (unsigned i = 1; i <= 14; ++i) arguments.push_back(i % 2 == 1 ? W(i % 10) : D(i % 10));
  EXPECT_EQ(CallNumber(RoutineOf(MixedFourteen), arguments), 12345678901234.0);
}

TEST(NativeCall, EveryKindOfResultComesBack) {
  EXPECT_EQ(static_cast<std::int32_t>(CallWord(RoutineOf(NoArguments), {})), -5);
  std::int64_t pointee = 0;
  EXPECT_EQ(
      CallNative(RoutineOf(Same), {W(reinterpret_cast<std::uintptr_t>(&pointee))}, Type::kPicture)
          .word,
      reinterpret_cast<std::uintptr_t>(&pointee));
  EXPECT_EQ(CallNumber(RoutineOf(Negated), {D(1e300)}), -1e300);
  EXPECT_EQ(CallNative(RoutineOf(IsPositive), {D(0.5)}, Type::kBoolean).word, 1u);
  EXPECT_EQ(CallNative(RoutineOf(IsPositive), {D(-0.5)}, Type::kBoolean).word, 0u);
}

TEST(NativeCall, OnlyTheLowByteOfABooleanResultCounts) {
  EXPECT_EQ(CallNative(RoutineOf(NoisyTruth), {}, Type::kBoolean).word, 0u);
}

TEST(NativeCall, ExceptionsPassOut) {
  EXPECT_THROW(CallWord(RoutineOf(Throws), {}), std::range_error);
}

TEST(NativeCall, RefusesMoreArgumentsThanItHasPlacesFor) {
  EXPECT_THROW(CallWord(RoutineOf(NoArguments), std::vector<NativeArgument>(100)),
               std::invalid_argument);
}

}  // namespace
}  // namespace host
