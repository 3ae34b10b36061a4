// Expectations about memory that must not be touched.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>

#include "tests/support/sanitizers.h"

// The statement ends the process by an access fault; a sanitizer reports it in its own way.
#if defined(VARNELL_ADDRESS_SANITIZER)
#define EXPECT_FAULT(statement) EXPECT_DEATH(statement, "AddressSanitizer")
#else
#define EXPECT_FAULT(statement) EXPECT_EXIT(statement, testing::KilledBySignal(SIGSEGV), "")
#endif

// Reads and writes one byte, visibly to the outside.
inline void Touch(volatile unsigned char* at) { *at = static_cast<unsigned char>(*at + 1); }
