// C++ exceptions of the string builder as host exceptions: which becomes which, and what happens
// when the message of one fails too.
#include "plugin/exception_guard.h"

#include <gtest/gtest.h>

#include <any>
#include <functional>
#include <future>
#include <ios>
#include <memory>
#include <new>
#include <regex>
#include <stdexcept>
#include <system_error>
#include <typeinfo>
#include <variant>

#include "plugin/exceptions.h"
#include "plugin/strings.h"
#include "tests/plugin/string_host.h"

namespace {

using plugin_test::StringHost;
using plugin_test::ThrowSomething;
using Lines = std::vector<std::string>;

// Exceptions of a program's own, where a base decides.
struct Plain {};
struct OwnException : std::exception {
  const char* what() const noexcept override { return "own"; }
};
struct SilentException : std::exception {
  const char* what() const noexcept override { return ""; }
};
struct OwnRangeError : std::range_error {
  OwnRangeError() : std::range_error("own range") {}
};
struct OwnBadAlloc : std::bad_alloc {
  const char* what() const noexcept override { return "never shown"; }
};
struct OwnBadCast : std::bad_cast {
  const char* what() const noexcept override { return "own cast"; }
};
// Of two kinds: the first of them in the order wins.
template <typename First, typename Second>
struct Both : First, Second {
  Both() : First(), Second("second") {}
  const char* what() const noexcept override { return "of both kinds"; }
};
struct RangeAndOutOfRange : std::range_error, std::out_of_range {
  RangeAndOutOfRange() : std::range_error("as range"), std::out_of_range("as out of range") {}
};
struct UnderflowAndLogic : std::logic_error, std::underflow_error {
  UnderflowAndLogic() : std::logic_error("as logic"), std::underflow_error("as underflow") {}
};

// A row per thrown type; `message` is what the host then gets, "" for none.
struct GuardRow {
  const char* name;
  ThrowSomething throwIt;
  const char* className;
  const char* message;
};

template <typename Exception, typename... Arguments>
ThrowSomething Throwing(Arguments... arguments) {
  return [=] { throw Exception(arguments...); };
}

const char* const kMemory = "OutOfMemoryException";
const char* const kBounds = "OutOfBoundsException";
const char* const kRuntime = "RuntimeException";
const char* const kCast = "IllegalCastException";
const char* const kUnnamed = "Sorry, but there was an unnamed C++ Exception.";
const char* const kNoMemory = "Failed to allocate memory.";

const GuardRow kRows[] = {
    {"bad_alloc", Throwing<std::bad_alloc>(), kMemory, kNoMemory},
    {"bad_array_new_length", Throwing<std::bad_array_new_length>(), kMemory, kNoMemory},
    {"own bad_alloc", Throwing<OwnBadAlloc>(), kMemory, kNoMemory},
    {"range_error", Throwing<std::range_error>("r"), kBounds, "r"},
    {"own range_error", Throwing<OwnRangeError>(), kBounds, "own range"},
    {"out_of_range", Throwing<std::out_of_range>("o"), kBounds, "o"},
    {"overflow_error", Throwing<std::overflow_error>("v"), kBounds, "v"},
    {"underflow_error", Throwing<std::underflow_error>("u"), kBounds, "u"},
    {"logic_error", Throwing<std::logic_error>("l"), kRuntime, "l"},
    {"length_error", Throwing<std::length_error>("n"), kRuntime, "n"},
    {"domain_error", Throwing<std::domain_error>("d"), kRuntime, "d"},
    {"invalid_argument", Throwing<std::invalid_argument>("i"), kRuntime, "i"},
    {"runtime_error", Throwing<std::runtime_error>("t"), kRuntime, "t"},
    {"bad_cast", Throwing<std::bad_cast>(), kCast, "std::bad_cast"},
    {"bad_any_cast", Throwing<std::bad_any_cast>(), kCast, "bad any_cast"},
    {"own bad_cast", Throwing<OwnBadCast>(), kCast, "own cast"},
    {"exception", Throwing<std::exception>(), kRuntime, "std::exception"},
    {"bad_typeid", Throwing<std::bad_typeid>(), kRuntime, "std::bad_typeid"},
    {"bad_weak_ptr", Throwing<std::bad_weak_ptr>(), kRuntime, "bad_weak_ptr"},
    {"own exception", Throwing<OwnException>(), kRuntime, "own"},
    {"exception without a text", Throwing<SilentException>(), kRuntime, ""},
    {"int", [] { throw 7; }, kRuntime, kUnnamed},
    {"text", [] { throw "thrown"; }, kRuntime, kUnnamed},
    {"pointer", [] { throw static_cast<std::exception*>(nullptr); }, kRuntime, kUnnamed},
    {"class of one's own", Throwing<Plain>(), kRuntime, kUnnamed},
    {"bad_alloc and range_error", Throwing<Both<std::bad_alloc, std::range_error>>(), kMemory,
     kNoMemory},
    {"bad_cast and out_of_range", Throwing<Both<std::bad_cast, std::out_of_range>>(), kBounds,
     "of both kinds"},
    {"bad_cast and runtime_error", Throwing<Both<std::bad_cast, std::runtime_error>>(), kRuntime,
     "of both kinds"},
    {"range_error and out_of_range", Throwing<RangeAndOutOfRange>(), kBounds, "as range"},
    {"logic_error and underflow_error", Throwing<UnderflowAndLogic>(), kBounds, "as underflow"},
};

std::string Expected(const GuardRow& row) {
  const std::string message = *row.message == '\0' ? "no message" : row.message;
  return std::string(row.className) + ": " + message;
}

TEST(ExceptionGuard, MapsEveryExceptionOfABuilderToItsHostException) {
  for (const GuardRow& row : kRows) {
    SCOPED_TRACE(row.name);
    StringHost host;
    host.ThrowFrom("REALBuildString", row.throwIt);
    EXPECT_EQ(REALBuildUnicodeString("abc", 3, kEncodingUtf8), nullptr);
    EXPECT_EQ(host.Raised(), Lines{Expected(row)});
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(ExceptionGuard, ShowsTheTextsOfExceptionsThatAddToTheirs) {
  const std::system_error systemError(std::make_error_code(std::errc::timed_out), "waiting");
  const std::ios_base::failure failure("reading");
  const std::regex_error regexError(std::regex_constants::error_brack);
  const std::future_error futureError(std::future_errc::no_state);
  const std::bad_variant_access variantError;
  const std::bad_function_call functionError;
  const std::pair<std::string, ThrowSomething> rows[] = {
      {systemError.what(), [&] { throw systemError; }},
      {failure.what(), [&] { throw failure; }},
      {regexError.what(), [&] { throw regexError; }},
      {futureError.what(), [&] { throw futureError; }},
      {variantError.what(), [&] { throw variantError; }},
      {functionError.what(), [&] { throw functionError; }},
  };
  for (const auto& [text, throwIt] : rows) {
    StringHost host;
    host.ThrowFrom("REALBuildString", throwIt);
    EXPECT_EQ(REALBuildUnicodeString("abc", 3, kEncodingUtf8), nullptr);
    EXPECT_EQ(host.Raised(), Lines{"RuntimeException: " + text});
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(ExceptionGuard, GivesWhatTheFunctionGivesAndRaisesNothing) {
  StringHost host;
  int value = 0;
  EXPECT_EQ(Guarded([&] { return &value; }), &value);
  EXPECT_EQ(host.Calls(), Lines{});
}

TEST(ExceptionGuard, GivesNullAfterAnException) {
  StringHost host;
  EXPECT_EQ(Guarded([]() -> int* { throw std::out_of_range("past"); }), nullptr);
  EXPECT_EQ(host.Raised(), Lines{"OutOfBoundsException: past"});
}

struct Builder {
  const char* name;
  double version;
  const char* entry;
  std::uint32_t encoding;
};

const Builder kBuilders[] = {
    {"plain", 2013.04, "REALBuildString", kEncodingUtf8},
    {"marked", 2013.04, "REALSetStringEncoding", kEncodingUtf8},
    {"UTF-16", 2012.0, "REALBuildStringWithEncoding", kEncodingUtf16},
    {"UTF-16 conversion", 2012.0, "REALConvertString", kEncodingUtf16},
    {"old UTF-16", 2011.9, "REALBuildString", kEncodingUtf16},
    {"old UTF-16 marked", 2011.9, "REALSetStringEncoding", kEncodingUtf16},
    {"old UTF-16 conversion", 2011.9, "REALConvertString", kEncodingUtf16},
    {"UTF-32", 2013.0, "REALBuildStringWithEncoding", kEncodingUtf32},
    {"UTF-32 as UTF-16", 2012.9, "REALBuildStringWithEncoding", kEncodingUtf32},
    {"UTF-32 as UTF-16 conversion", 2012.9, "REALConvertString", kEncodingUtf32},
    {"old UTF-32", 2011.9, "REALBuildString", kEncodingUtf32},
};

TEST(ExceptionGuard, StandsAroundEveryHostCallOfTheBuilder) {
  for (const Builder& row : kBuilders) {
    SCOPED_TRACE(row.name);
    StringHost host(row.version);
    host.ThrowFrom(row.entry, Throwing<std::out_of_range>("past"));
    const std::string longText(1200, 'a');  // long enough for a block of its own
    EXPECT_EQ(REALBuildUnicodeString(longText.data(), 1200, row.encoding), nullptr);
    EXPECT_EQ(host.Raised(), Lines{"OutOfBoundsException: past"});
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(ExceptionGuard, StandsAroundTheUtf16BuilderWhenItIsCalledAlone) {
  for (const Builder& row : kBuilders) {
    if (row.encoding != kEncodingUtf16) continue;
    SCOPED_TRACE(row.name);
    StringHost host(row.version);
    host.ThrowFrom(row.entry, Throwing<std::bad_cast>());
    EXPECT_EQ(REALBuildUnicodeStringUTF16(u"ab", 4), nullptr);
    EXPECT_EQ(host.Raised(), Lines{"IllegalCastException: std::bad_cast"});
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(ExceptionGuard, StandsAroundTheResolverToo) {
  StringHost host;
  host.runtime.Calls().onLine = [](const std::string& line) {
    if (line == "resolve(REALSetStringEncoding)") throw std::underflow_error("low");
  };
  EXPECT_EQ(REALBuildUnicodeString("abc", 3, kEncodingAscii), nullptr);
  // Asked again for the message, it throws again.
  EXPECT_EQ(host.Raised(), Lines{"OutOfBoundsException: no message"});
  EXPECT_EQ(host.LeftOver(), Lines{});
}

}  // namespace
