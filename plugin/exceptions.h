// Raises exceptions in the host program that called a method.
#pragma once

#include <cstddef>
#include <cstdint>

// Raises an exception of a host class with a message (7-bit text; null or empty for none). A class
// that the host lacks becomes "RuntimeException"; a host that lacks that too, or cannot raise, is
// told nothing. Returns normally: the method must then return its failure result at once.
// Deliberate: the length and the error number are not used; the message ends at its zero, the
// number is 0.
void RaiseException(const char* className, const char* message, std::size_t length,
                    std::int32_t errorNumber);
