// The page of a gallery: one HTML file that needs nothing else, neither the network nor scripts.
#pragma once

#include <string>
#include <vector>

#include "tool/gallery_plan.h"

namespace tool {

// All up to the first chapter: title, where the results come from, contents, and how to read a
// tile. `origin` is a sentence for people.
std::string PageStart(const std::string& origin, const std::vector<GalleryChapter>& chapters);

std::string ChapterStart(const GalleryChapter& chapter);
std::string SectionStart(const GallerySection& section);
// A tile with what its call gave: pictures, call, times and hash, or what went wrong.
std::string TileFigure(const GalleryTile& tile, const TileResult& made);
std::string SectionEnd();
std::string PageEnd();

}  // namespace tool
