#include "tool/gallery_page.h"

#include <cstdio>

#include "tool/gallery_style.h"
#include "tool/gallery_tiles.h"
#include "tool/html.h"
#include "tool/picture_parts.h"

namespace tool {
namespace {

std::string Heading(const char* level, const std::string& id, const std::string& text) {
  return std::string("<") + level + " id=\"" + id + "\">" + EscapeHtml(text) + "</" + level + ">\n";
}

std::string Link(const std::string& id, const std::string& text) {
  return "<a href=\"#" + id + "\">" + EscapeHtml(text) + "</a>";
}

std::string Contents(const std::vector<GalleryChapter>& chapters) {
  std::string html = "<nav aria-label=\"Contents\">\n<ul>\n";
  for (const GalleryChapter& chapter : chapters) {
    html += "<li>" + Link(chapter.id, chapter.heading) + "\n<ul>\n";
    for (const GallerySection& section : chapter.sections) {
      html += "<li>" + Link(section.id, section.heading) + "</li>\n";
    }
    html += "</ul></li>\n";
  }
  return html + "</ul>\n</nav>\n";
}

constexpr char kHowToRead[] = R"html(<h2 id="reading">How to read a tile</h2>
<dl>
<div><dt>Pictures</dt>
<dd>One pixel of a result is one pixel of the page, where there is room and the tile does not say otherwise. Magnified pixels are
squares, nothing is smoothed. Transparency lies on a checkerboard.</dd></div>
<div><dt>Call</dt>
<dd>The method with its arguments; one click selects it. Below it stands what it was called on.
<code>picturehost sheet PICTURE --part LEFT,TOP,WIDTH,HEIGHT -o part.png</code> cuts out a
part.</dd></div>
<div><dt>Time</dt>
<dd>Of the call, as it was made for this page: the least of three, where it takes less than 20 ms. And, as
ms/MP, the same for a million pixels of the larger of both pictures: the one it was called on, or the
result. With tiny pictures it mostly shows what a call costs by itself.</dd></div>
<div><dt>Hash</dt>
<dd>Sixteen digits that name all pixels of the whole result, shown or not: FNV-1a of 64 bits over width and
height (32 bits each, low byte first) and the rows of red, green, blue and alpha. Results are
fixed bit for bit: where the hashes of two galleries differ, so do the pictures.</dd></div>
</dl>
)html";

std::string Milliseconds(double seconds) {
  const double value = seconds * 1000;
  char text[64];
  std::snprintf(text, sizeof text, "%.*f",
                value < 0.1   ? 3
                : value < 10  ? 2
                : value < 100 ? 1
                              : 0,
                value);
  return text;
}

std::string Fact(const std::string& text) {
  return "<span class=\"fact\">" + EscapeHtml(text) + "</span>\n";
}

std::string Times(const TileResult& made) {
  if (made.megapixels <= 0) return "";
  return Fact(Milliseconds(made.seconds) + " ms · " + Milliseconds(made.seconds / made.megapixels) +
              " ms/MP");
}

std::string Result(const TileResult& made) {
  char hash[20];
  std::snprintf(hash, sizeof hash, "%016llx", (unsigned long long)PixelHash(made.seen));
  return "<span class=\"fact\">" + SizeText(made.seen.width, made.seen.height) +
         " · <code class=\"hash\">" + hash + "</code></span>\n";
}

}  // namespace

std::string PageStart(const std::string& origin, const std::vector<GalleryChapter>& chapters) {
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; "
      "style-src 'unsafe-inline'\">\n"
      "<meta name=\"color-scheme\" content=\"light dark\">\n"
      "<link rel=\"icon\" href=\"data:,\">\n"
      "<title>Pictures and plots</title>\n<style>";
  html += kGalleryStyle;
  html += "</style>\n</head>\n<body>\n<header>\n<h1>Pictures and plots</h1>\n<p class=\"lead\">";
  html += EscapeHtml(origin) + "</p>\n</header>\n" + Contents(chapters) + "<main>\n";
  html += kHowToRead;
  return html;
}

std::string ChapterStart(const GalleryChapter& chapter) {
  return Heading("h2", chapter.id, chapter.heading) + chapter.introduction;
}

std::string SectionStart(const GallerySection& section) {
  return Heading("h3", section.id, section.heading) + section.introduction + "<div class=\"grid " +
         section.layout + "\">\n";
}

std::string TileFigure(const GalleryTile& tile, const TileResult& made) {
  const bool failed = !made.faults.empty();
  std::string html = failed ? "<figure class=\"failed\">\n" : "<figure>\n";
  html += "<div class=\"shown\">\n";
  Shown shown;
  if (!failed) shown = tile.show(made);
  html += shown.html;
  for (const std::string& fault : made.faults) html += "<p>" + EscapeHtml(fault) + "</p>\n";
  html += "</div>\n<figcaption>\n<strong>" + EscapeHtml(tile.title) + "</strong>\n";
  const Subject& on = tile.call.on;
  if (!tile.call.method.empty()) {
    html += "<code class=\"call\">" + EscapeHtml(made.call) + "</code>\n";
    const std::string size = SizeText(on.picture->width, on.picture->height);
    html += Fact("on " + on.name + (on.isPart ? "" : ", " + size));
  }
  if (!failed) html += Times(made) + Result(made);
  if (!shown.note.empty()) html += Fact(shown.note);
  return html + "</figcaption>\n</figure>\n";
}

std::string SectionEnd() { return "</div>\n"; }

std::string PageEnd() { return "</main>\n</body>\n</html>\n"; }

}  // namespace tool
