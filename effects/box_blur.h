// A box blur: the mean over 2r + 1 rows, then over 2r + 1 columns, with running sums.
#pragma once

#include <cstdint>

#include "pixels/picture_editor.h"
#include "plugin/zeroed_block.h"

class BoxBlur {
 public:
  // Requests its five blocks of memory, always all of them, in a fixed order and of fixed sizes: a
  // table of quotients, three arrays of sums per source column, a copy of one row of the result.
  // radius >= 1. A radius of 1048575 or more needs a table beyond the size rule, which then counts
  // as missing.
  BoxBlur(const PictureEditor& source, PictureEditor& result, std::int32_t radius);

  // False when a block is missing: then nothing may be blurred.
  bool Complete() const;

  void FillTable();

  // The vertical pass. Row y of the result becomes the truncated mean of source rows y - r .. y +
  // r, where rows beyond the border are the border's.
  void StartColumns();
  void BlurColumnsInto(std::int32_t y);  // for all rows, in ascending order

  // The horizontal pass, in place in the result.
  // Deliberate: reads the row by the source's pixel layout and writes it by the result's.
  void BlurRow(std::int32_t y);

 private:
  void AddRow(std::int32_t row, std::int32_t times);
  std::uint32_t Word(std::int32_t r, std::int32_t g, std::int32_t b) const;

  const PictureEditor& source_;
  PictureEditor& result_;
  std::int32_t radius_;
  std::int64_t box_;  // pixels a side
  ZeroedBlock<std::int32_t> quotients_;
  ZeroedBlock<std::int32_t> red_, green_, blue_;
  ZeroedBlock<std::uint32_t> row_;
};
