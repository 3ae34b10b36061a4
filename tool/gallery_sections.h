// The chapters of a gallery.
#pragma once

#include "tool/gallery_plan.h"

namespace tool {

// Every method, the seven modes and blurs, on a picture of the user. `number` counts the pictures
// from 1; whole pictures are shown with at most `most` pixels a side. A picture without pixels
// cannot be.
GalleryChapter PictureChapter(const Subject& picture, int number, int most);

// Rings, sprite, mask and kernels, on the project's own test pictures.
GalleryChapter CommonChapter();

// "Kernels", a section of the latter: the curves of the textbooks, and what the plug-in really
// does.
GallerySection KernelSection();

}  // namespace tool
