// The inner pixels of one drawing: chooses, for a row or for parts of it, the fastest exact way.
#pragma once

#include "effects/draw_rows.h"
#include "pixels/picture_editor.h"

class InnerPixels {
 public:
  // mask may be null. The tables, 8 KB, lie within.
  InnerPixels(const PictureEditor& dest, const PictureEditor& source, const PictureEditor* mask);

  // Before the first Draw: fills the tables. The weights are in the order of Corner.
  void Prepare(const double (&weights)[kCorners]);

  // False when a picture has no layout: nothing else may be called then.
  bool Possible() const { return possible_; }

  // How many of the source's columns have pixels, and masks of their own.
  std::int32_t Columns() const { return columns_; }

  // `mask` is read when there is one.
  void Draw(std::uint32_t* dest, const Neighbours& source, const Neighbours& mask,
            std::size_t count) const;
  void MakeOpaque(std::uint32_t* dest, std::size_t count) const {
    rows_.makeOpaque(dest, weighted_.dest, count);
  }

 private:
  void FillTables(const double (&weights)[kCorners]);
  bool FindShares();

  const DrawRows& rows_;
  std::int32_t columns_;
  bool possible_;
  bool fixedForBlack_ = false;  // fixed_ holds where the mask is black, or there is none
  bool nothingForWhite_ = false;
  WeightedBlend weighted_;
  FixedBlend fixed_ = {};
  double tables_[kCorners][256] = {};
};
