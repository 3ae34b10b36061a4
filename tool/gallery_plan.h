// What a gallery is to show: sections of tiles, most of which are calls still to be made.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tool/bitmap.h"
#include "tool/host_options.h"

namespace tool {

// A picture on its way into the host, and what to call it.
struct Subject {
  std::shared_ptr<const Bitmap> picture;
  std::string name;
  AlphaEntry alpha = AlphaEntry::kChannel;  // how its transparency enters, where it has any
  bool oval = false;                        // where it has none, it gets a soft oval as a mask
  bool isPart = false;                      // the name tells its size
};

// A call of a method on a subject. Its arguments are words as on a command line; a picture argument
// is the name of `drawn`. Without a method nothing is called, and the subject itself is shown.
struct PlannedCall {
  Subject on;
  std::string method;
  std::vector<std::string> words;
  Subject drawn;
};

// What a call gave.
struct TileResult {
  std::string call;                 // "ScaleZVQ(400, 300, true, 0)"
  std::vector<std::string> faults;  // a line each; not empty: there are no pictures below
  Bitmap seen;                      // what a person would see
  Bitmap colours;                   // the same without its mask; empty where there is none
  Bitmap mask;                      // empty where there is none
  double seconds = 0;               // the least of several calls, where they are quick
  double megapixels = 0;            // of the larger one of the receiver and the result
};

// What a tile shows of it.
struct Shown {
  std::string html;  // pictures or plots
  std::string note;  // a sentence below, or nothing
};

struct GalleryTile {
  std::string title;
  PlannedCall call;
  std::function<Shown(const TileResult&)> show;
};

struct GallerySection {
  std::string id;
  std::string heading;
  std::string introduction;  // HTML: paragraphs, or nothing
  std::string layout;        // the style's class of the grid: how wide its tiles want to be
  std::vector<GalleryTile> tiles;
};

// One chapter for each picture of the user, and one for what does not depend on them.
struct GalleryChapter {
  std::string id;
  std::string heading;
  std::string introduction;
  std::vector<GallerySection> sections;
};

}  // namespace tool
