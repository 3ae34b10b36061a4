// Every wrapper of a host routine: found at first use, kept, called with its arguments unchanged,
// and neutral without it.
#include "plugin/wrappers.h"

#include <gtest/gtest.h>

#include "plugin/host_state.h"
#include "tests/plugin/fake_host.h"

namespace {

using plugin_test::FakeHandle;
using plugin_test::FakeHost;
using plugin_test::Show;
using Lines = std::vector<std::string>;

template <typename Entry>
struct Stub;

template <typename... Arguments>
std::string Shown(Arguments... arguments) {
  if constexpr (sizeof...(Arguments) == 0) {
    return "nothing";
  } else {
    return Show(arguments...);
  }
}

// Writes its arguments down and answers handle 99, or the success byte 1.
template <typename Result, typename... Arguments>
struct Stub<Result(Arguments...)> {
  static Result Call(Arguments... arguments) {
    FakeHost::Current().Note(Shown(arguments...));
    if constexpr (std::is_pointer_v<Result>) {
      return FakeHandle<Result>(99);
    } else if constexpr (!std::is_void_v<Result>) {
      return Result{1};
    }
  }
};

std::uint8_t ReadInteger(REALobject object, const char* property, std::int32_t* value) {
  FakeHost::Current().Note(Show(object, property));
  *value = -42;
  return 1;
}

std::uint8_t ReadBoolean(REALobject object, const char* property, std::uint8_t* value) {
  FakeHost::Current().Note(Show(object, property));
  *value = 1;
  return 1;
}

template <auto wrapper, typename... Arguments>
std::string Answer(Arguments... arguments) {
  if constexpr (std::is_void_v<decltype(wrapper(arguments...))>) {
    wrapper(arguments...);
    return "none";
  } else {
    return Show(wrapper(arguments...));
  }
}

template <auto& slot>
REALroutine Held() {
  return reinterpret_cast<REALroutine>(slot);
}

template <typename Entry>
REALroutine Of(Entry* routine = Stub<Entry>::Call) {
  return reinterpret_cast<REALroutine>(routine);
}

const REALobject kObject = FakeHandle<REALobject>(1);
const REALpicture kPicture = FakeHandle<REALpicture>(2);
const REALstring kString = FakeHandle<REALstring>(3);
char gBuffer[4];
REALmoduleDefinition gModule;
REALclassDefinition gClass;
REALpictureDescription gDescription;
constexpr std::int32_t kLeast = -2147483647 - 1;
constexpr char kName[] = "Width";
constexpr char kBytes[] = "some bytes";
const std::string kHandle99 = Show(FakeHandle<void*>(99));

struct WrapperCase {
  const char* wrapper;
  Lines entries;  // tried in this order
  REALroutine stub;
  std::string (*call)();  // with telling arguments; the result as text
  REALroutine (*held)();
  std::string arguments, result, neutral;
  friend void PrintTo(const WrapperCase& row, std::ostream* stream) { *stream << row.wrapper; }
};

// clang-format off
const WrapperCase kCases[] = {
  {"REALRegisterModule", {"PluginRegisterModule"}, Of<PluginRegisterModuleEntry>(),
   [] { return Answer<REALRegisterModule>(&gModule); },
   Held<pRegisterModule>, Show(&gModule), "none", "none"},
  {"REALRegisterClassExtension", {"PluginRegisterClassExtension"}, Of<PluginRegisterClassExtensionEntry>(),
   [] { return Answer<REALRegisterClassExtension>(&gClass); },
   Held<pRegisterClassExtension>, Show(&gClass), "none", "none"},
  {"REALnewInstance", {"PluginNewInstance"}, Of<PluginNewInstanceEntry>(),
   [] { return Answer<REALnewInstance>(kName); },
   Held<pNewInstance>, Show(kName), kHandle99, "nil"},
  {"REALGetClassRef", {"pluginObjectType"}, Of<PluginObjectTypeEntry>(),
   [] { return Answer<REALGetClassRef>(kName); },
   Held<pGetClassRef>, Show(kName), kHandle99, "nil"},
  {"REALLockObject", {"REALLockObject"}, Of<REALLockObjectEntry>(),
   [] { return Answer<REALLockObject>(kObject); },
   Held<pLockObject>, Show(kObject), "none", "none"},
  {"REALUnlockObject", {"REALUnlockObject"}, Of<REALUnlockObjectEntry>(),
   [] { return Answer<REALUnlockObject>(kObject); },
   Held<pUnlockObject>, Show(kObject), "none", "none"},
  {"REALUnlockString", {"REALUnlockString"}, Of<REALUnlockStringEntry>(),
   [] { return Answer<REALUnlockString>(kString); },
   Held<pUnlockString>, Show(kString), "none", "none"},
  {"REALGetPropValueInteger", {"REALGetPropValueInteger", "REALGetPropValueInt"}, Of(ReadInteger),
   [] { return Answer<REALGetPropValueInteger>(kObject, kName); },
   Held<pGetPropValueInteger>, Show(kObject, kName), "-42", "0"},
  {"REALGetPropValueBoolean", {"REALGetPropValueBool"}, Of(ReadBoolean),
   [] { return Answer<REALGetPropValueBoolean>(kObject, kName); },
   Held<pGetPropValueBoolean>, Show(kObject, kName), "true", "false"},
  {"REALSetPropValueInteger", {"REALSetPropValueInteger", "REALSetPropValueInt"},
   Of<REALSetPropValueIntegerEntry>(),
   [] { return Answer<REALSetPropValueInteger>(kObject, kName, kLeast); },
   Held<pSetPropValueInteger>, Show(kObject, kName, kLeast), "none", "none"},
  {"REALSetPropValueString", {"REALSetPropValueString"}, Of<REALSetPropValueStringEntry>(),
   [] { return Answer<REALSetPropValueString>(kObject, kName, kString); },
   Held<pSetPropValueString>, Show(kObject, kName, kString), "none", "none"},
  {"REALRaiseException", {"RuntimeRaiseException"}, Of<RuntimeRaiseExceptionEntry>(),
   [] { return Answer<REALRaiseException>(kObject); },
   Held<pRaiseException>, Show(kObject), "none", "none"},
  {"REALYieldToRB", {"REALYieldToRB"}, Of<REALYieldToRBEntry>(),
   [] { return Answer<REALYieldToRB>(); },
   Held<pYieldToRB>, "nothing", "none", "none"},
  {"REALLoadObjectMethod", {"REALLoadObjectMethod"}, Of<REALLoadObjectMethodEntry>(),
   [] { return Answer<REALLoadObjectMethod>(kObject, kName); },
   Held<pLoadObjectMethod>, Show(kObject, kName), kHandle99, "nil"},
  {"REALNewPicture", {"newPicture"}, Of<NewPictureEntry>(),
   [] { return Answer<REALNewPicture>(-1, 32767, 32); },
   Held<pNewPicture>, "-1, 32767, 32", kHandle99, "nil"},
  {"REALLockPictureDescription", {"REALLockPictureDescription"}, Of<REALLockPictureDescriptionEntry>(),
   [] { return Answer<REALLockPictureDescription>(kPicture, &gDescription, 10); },
   Held<pLockPictureDescription>, Show(kPicture, &gDescription, 10), "true", "false"},
  {"REALUnlockPictureDescription", {"unlockPictureDescription"}, Of<UnlockPictureDescriptionEntry>(),
   [] { return Answer<REALUnlockPictureDescription>(kPicture); },
   Held<pUnlockPictureDescription>, Show(kPicture), "none", "none"},
  {"REALGetPictureGraphics", {"pluginPictureGraphicsGetter"}, Of<PluginPictureGraphicsGetterEntry>(),
   [] { return Answer<REALGetPictureGraphics>(kPicture); },
   Held<pGetPictureGraphics>, Show(kPicture), kHandle99, "nil"},
  {"REALGetPictureMask", {"REALGetPictureMask"}, Of<REALGetPictureMaskEntry>(),
   [] { return Answer<REALGetPictureMask>(kPicture, 1); },
   Held<pGetPictureMask>, Show(kPicture, 1), kHandle99, "nil"},
  {"REALPictureClearCache", {"REALPictureClearCache"}, Of<REALPictureClearCacheEntry>(),
   [] { return Answer<REALPictureClearCache>(kPicture); },
   Held<pPictureClearCache>, Show(kPicture), "none", "none"},
  {"REALBuildPictureFromBuffer", {"REALBuildPictureFromBuffer"}, Of<REALBuildPictureFromBufferEntry>(),
   [] { return Answer<REALBuildPictureFromBuffer>(5, 6, 1, gBuffer, -20); },
   Held<pBuildPictureFromBuffer>, Show(5, 6, 1, static_cast<void*>(gBuffer), -20), kHandle99, "nil"},
  {"originalREALBuildString", {"REALBuildString"}, Of<REALBuildStringEntry>(),
   [] { return Answer<originalREALBuildString>(kBytes, 4); },
   Held<pBuildString>, Show(kBytes, 4), kHandle99, "nil"},
  {"REALBuildStringWithEncoding", {"REALBuildStringWithEncoding"}, Of<REALBuildStringWithEncodingEntry>(),
   [] { return Answer<REALBuildStringWithEncoding>(kBytes, 4, 0x08000100u); },
   Held<pBuildStringWithEncoding>, Show(kBytes, 4, 134217984), kHandle99, "nil"},
  {"REALSetStringEncoding", {"REALSetStringEncoding"}, Of<REALSetStringEncodingEntry>(),
   [] { return Answer<REALSetStringEncoding>(kString, 0xFFFFFFFFu); },
   Held<pSetStringEncoding>, Show(kString) + ", 4294967295", "none", "none"},
  {"REALConvertString", {"REALConvertString"}, Of<REALConvertStringEntry>(),
   [] { return Answer<REALConvertString>(kString, 0x0600u); },
   Held<pConvertString>, Show(kString, 1536), kHandle99, "nil"},
};
// clang-format on

class Wrapper : public testing::TestWithParam<WrapperCase> {
 protected:
  const WrapperCase& Case() const { return GetParam(); }
  void Offer(const std::string& entry) {
    host_.Offer(entry, reinterpret_cast<void (*)()>(Case().stub));
  }
  Lines LookUpsOf(std::size_t count) const {
    Lines lines;
    for (std::size_t i = 0; i < count; ++i) lines.push_back("resolve(" + Case().entries[i] + ")");
    return lines;
  }
  FakeHost host_;
};

TEST_P(Wrapper, FindsItsRoutineAtFirstUseAndKeepsIt) {
  EXPECT_EQ(Case().held(), nullptr);
  Offer(Case().entries[0]);
  EXPECT_EQ(Case().call(), Case().result);
  EXPECT_EQ(host_.Lines(), (Lines{"resolve(" + Case().entries[0] + ")", Case().arguments}));
  EXPECT_EQ(Case().held(), Case().stub);

  host_.ClearLines();
  host_.Withdraw(Case().entries[0]);
  EXPECT_EQ(Case().call(), Case().result);
  EXPECT_EQ(Case().call(), Case().result);
  EXPECT_EQ(host_.Lines(), Lines(2, Case().arguments));
}

TEST_P(Wrapper, AnswersItsNeutralResultAndAsksAgainWhileTheRoutineIsMissing) {
  const Lines lookUps = LookUpsOf(Case().entries.size());
  for (int i = 0; i < 3; ++i) {
    host_.ClearLines();
    EXPECT_EQ(Case().call(), Case().neutral);
    EXPECT_EQ(host_.Lines(), lookUps);
    EXPECT_EQ(Case().held(), nullptr);
  }
  Offer(Case().entries[0]);
  host_.ClearLines();
  EXPECT_EQ(Case().call(), Case().result);
  EXPECT_EQ(host_.Calls(), Lines{Case().arguments});
}

TEST_P(Wrapper, IsNeutralWithoutAResolver) {
  Offer(Case().entries[0]);
  gResolver = nullptr;
  EXPECT_EQ(Case().call(), Case().neutral);
  EXPECT_EQ(host_.Lines(), Lines{});
}

void ThrowSeven() { throw 7; }

TEST_P(Wrapper, LetsTheExceptionsOfItsRoutinePass) {
  host_.Offer(Case().entries[0], ThrowSeven);
  EXPECT_THROW(Case().call(), int);
  EXPECT_THROW(Case().call(), int);
}

TEST_P(Wrapper, TriesItsLastEntryNameOnlyWhenTheOthersAreMissingAndKeepsItThen) {
  Offer(Case().entries.back());
  EXPECT_EQ(Case().call(), Case().result);
  Lines expected = LookUpsOf(Case().entries.size());
  expected.push_back(Case().arguments);
  EXPECT_EQ(host_.Lines(), expected);

  // Once found, a name that comes up later changes nothing.
  host_.Offer(Case().entries[0], ThrowSeven);
  host_.ClearLines();
  EXPECT_EQ(Case().call(), Case().result);
  EXPECT_EQ(host_.Lines(), Lines{Case().arguments});
}

INSTANTIATE_TEST_SUITE_P(All, Wrapper, testing::ValuesIn(kCases),
                         [](const auto& row) { return std::string(row.param.wrapper); });

TEST(LookUpEntry, AsksTheHostEveryTimeAndKeepsNothing) {
  FakeHost host;
  EXPECT_EQ(LookUpEntry("RegisterPluginVersion"), nullptr);
  host.Offer("RegisterPluginVersion", ThrowSeven);
  EXPECT_EQ(LookUpEntry("RegisterPluginVersion"), reinterpret_cast<REALroutine>(ThrowSeven));
  host.Withdraw("RegisterPluginVersion");
  EXPECT_EQ(LookUpEntry("RegisterPluginVersion"), nullptr);
  EXPECT_EQ(host.Lines(), Lines(3, "resolve(RegisterPluginVersion)"));
}

TEST(LookUpEntry, FindsNothingWithoutAResolver) {
  FakeHost host;
  host.Offer("newPicture", ThrowSeven);
  gResolver = nullptr;
  EXPECT_EQ(LookUpEntry("newPicture"), nullptr);
}

}  // namespace
