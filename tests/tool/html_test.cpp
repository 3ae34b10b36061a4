// Pieces of pages.
#include "tool/html.h"

#include <gtest/gtest.h>

#include "tool/exit_status.h"

namespace tool {
namespace {

constexpr char kBad[] = "\xEF\xBF\xBD";

TEST(Html, EscapesWhatHasAMeaning) {
  EXPECT_EQ(EscapeHtml("a<b>&\"c' é"), "a&lt;b&gt;&amp;&quot;c' é");
  EXPECT_EQ(EscapeHtml(""), "");
}

TEST(Html, ReplacesWhatIsNoText) {
  const std::string bad = kBad;
  const struct {
    std::string text, escaped;
  } rows[] = {
      {std::string("a\0b", 3), "a" + bad + "b"},
      {"tab\tline\n\x7F", "tab" + bad + "line" + bad + bad},
      {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
      {"caf\xE9", "caf" + bad},                     // of another encoding
      {"\xC3(", bad + "("},                         // cut off
      {"\xE2\x82", bad + bad},                      // cut off at the end
      {"\xC0\x80", bad + bad},                      // longer than it need be
      {"\xED\xA0\x80", bad + bad + bad},            // half a pair
      {"\xF4\x90\x80\x80", bad + bad + bad + bad},  // beyond the last
      {"\x80\xFF", bad + bad},
  };
  for (const auto& row : rows) EXPECT_EQ(EscapeHtml(row.text), row.escaped);
}

TEST(Html, CarriesPicturesWithinItself) {
  const std::string url = DataUrl(Bitmap(2, 1, false));
  EXPECT_EQ(url.substr(0, 37), "data:image/png;base64,iVBORw0KGgoAAAA");  // the signature of PNG
  EXPECT_EQ((url.size() - 22) % 4, 0u);
  EXPECT_THROW(DataUrl(Bitmap()), Failure);
}

TEST(Html, ShowsPixelsAsSquares) {
  const std::string plain = ImageElement(Bitmap(2, 3, false), "a \"b\"");
  EXPECT_EQ(plain.substr(0, 51), "<img width=\"2\" height=\"3\" alt=\"a &quot;b&quot;\" src");
  const std::string magnified = ImageElement(Bitmap(2, 3, true), "a", 4);
  EXPECT_EQ(magnified.substr(0, 57),
            "<img class=\"magnified clear\" width=\"8\" height=\"12\" alt=\"a");
}

}  // namespace
}  // namespace tool
