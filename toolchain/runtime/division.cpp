// Division of 64-bit integers, which the compiler calls by these names on 32-bit processors.
// Quotients truncate toward zero; remainders have the dividend's sign. Division by 0 traps, as the
// processor does.
#include <stdint.h>

#define HIDDEN extern "C" __attribute__((visibility("hidden")))

namespace {

struct Division {
  uint64_t quotient;
  uint64_t remainder;
};

// The processor's own division of 64 by 32 bits. high < divisor, so that the quotient fits.
uint32_t Divide64By32(uint32_t high, uint32_t low, uint32_t divisor, uint32_t& remainder) {
  uint32_t quotient;
  __asm__("divl %4" : "=a"(quotient), "=d"(remainder) : "a"(low), "d"(high), "rm"(divisor) : "cc");
  return quotient;
}

uint32_t High(uint64_t value) { return static_cast<uint32_t>(value >> 32); }
uint32_t Low(uint64_t value) { return static_cast<uint32_t>(value); }

Division DivideByWord(uint64_t dividend, uint32_t divisor) {
  uint32_t remainder;
  const uint32_t high = Divide64By32(0, High(dividend), divisor, remainder);
  const uint32_t low = Divide64By32(remainder, Low(dividend), divisor, remainder);
  return {uint64_t{high} << 32 | low, remainder};
}

// divisor >= 2^32. Its upper 32 bits, from the first one bit on, divide half the dividend; the
// quotient found so, brought back to scale, is right or one too large.
Division DivideByLong(uint64_t dividend, uint64_t divisor) {
  const int zeros = __builtin_clz(High(divisor));
  const uint32_t upper = High(divisor << zeros);
  const uint64_t half = dividend >> 1;
  uint32_t unused;
  const uint32_t scaled = Divide64By32(High(half), Low(half), upper, unused);
  uint32_t quotient = scaled >> (31 - zeros);
  if (quotient != 0) --quotient;
  uint64_t remainder = dividend - quotient * divisor;
  if (remainder >= divisor) {
    ++quotient;
    remainder -= divisor;
  }
  return {quotient, remainder};
}

Division Divide(uint64_t dividend, uint64_t divisor) {
  return High(divisor) == 0 ? DivideByWord(dividend, Low(divisor))
                            : DivideByLong(dividend, divisor);
}

uint64_t Magnitude(int64_t value) {
  return value < 0 ? uint64_t{0} - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
}
int64_t WithSign(uint64_t magnitude, bool negative) {
  return static_cast<int64_t>(negative ? uint64_t{0} - magnitude : magnitude);
}

}  // namespace

HIDDEN int64_t __divdi3(int64_t dividend, int64_t divisor) {
  const Division result = Divide(Magnitude(dividend), Magnitude(divisor));
  return WithSign(result.quotient, (dividend < 0) != (divisor < 0));
}
HIDDEN int64_t __moddi3(int64_t dividend, int64_t divisor) {
  return WithSign(Divide(Magnitude(dividend), Magnitude(divisor)).remainder, dividend < 0);
}
HIDDEN uint64_t __udivdi3(uint64_t dividend, uint64_t divisor) {
  return Divide(dividend, divisor).quotient;
}
HIDDEN uint64_t __umoddi3(uint64_t dividend, uint64_t divisor) {
  return Divide(dividend, divisor).remainder;
}
