// What the torture rests on: allocations of the loaded plug-in can be made to fail, and its
// variables can be put back.
#include <gtest/gtest.h>

#include "plugin/processor.h"
#include "tests/support/allocation_faults.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"
#include "tests/torture/plugin_image.h"

namespace torture {

namespace {

using support::AllocationWatch;

TEST(AllocationFault, ReachesTheLoadedPlugin) {
  support::LoadedPlugin plugin;
  host::Picture* receiver = plugin.Host().NewPicture({.width = 3, .height = 2, .fill = {9, 9, 9}});
  const auto resampled = [&](int failAt, int& allocations) {
    const AllocationWatch watch(failAt);
    const host::CallReport report = plugin.Library().Call("ScalingZVQ", receiver, {1, 2, 3});
    allocations = watch.Calls();
    return report.ResultPicture();
  };
  int allocations = 0;
  EXPECT_NE(resampled(0, allocations), nullptr);
  const int further = BestVectorLevel() > VectorLevel::kScalar ? 1 : 0;
  EXPECT_EQ(allocations, 8 + further)
      << "a picture, heads, two columns, one for vectors, new heads, three rows";
  EXPECT_EQ(resampled(1, allocations), nullptr) << "without the intermediate picture";
  EXPECT_EQ(allocations, 1);
  host::Picture* blackened = resampled(3, allocations);
  ASSERT_NE(blackened, nullptr);
  EXPECT_EQ(blackened->Get(0, 0), (host::Rgba{0, 0, 0, 255})) << "a column without its list";
  EXPECT_EQ(blackened->Get(1, 0), (host::Rgba{9, 9, 9, 255}));
}

TEST(AllocationFault, ChangesWhichScalerServes) {
  support::LoadedPlugin plugin;
  host::Picture* receiver = plugin.Host().NewPicture({.width = 2, .height = 1});
  receiver->Set(0, 0, {0, 0, 0, 255});
  const auto middle = [&](int failAt) {
    const AllocationWatch watch(failAt);
    const host::CallReport report = plugin.Library().Call("ScaleZVQ", receiver, {4, 2, true});
    return report.ResultPicture()->Get(1, 0).r;
  };
  EXPECT_EQ(middle(0), 128) << "smooth: the mean of both pixels";
  for (int failAt = 1; failAt <= 5; ++failAt) EXPECT_EQ(middle(failAt), 0) << "the nearest pixel";
}

TEST(PluginImage, LetsACallFindNothingLookedUp) {
  support::LoadedPlugin plugin;
  host::Picture* receiver = plugin.Host().NewPicture({.width = 3, .height = 2});
  const PluginImage image(plugin.Library().File());
  const auto lines = [&] {
    plugin.Host().Calls().Clear();
    plugin.Library().Call("ScaleZVQ", receiver, {2, 2});
    return plugin.Host().Calls().Lines().size();
  };
  const std::size_t first = lines();
  EXPECT_LT(lines(), first) << "everything is looked up and the kind is known";
  image.Restore();
  EXPECT_EQ(lines(), first);
}

}  // namespace

}  // namespace torture
