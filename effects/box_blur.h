// A box blur: the mean over 2r + 1 rows, then over 2r + 1 columns, with running sums.
#pragma once

#include <cstdint>

#include "effects/blur_rows.h"
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

  // Makes the sums those of row 0. Before that, fills the table if anything reads it.
  void Start();

  // Whether no row of the result, as many as the source has, lies on another one. Then both passes
  // may go over the picture together.
  bool RowsLieApart() const;

  // The vertical pass. Row y of the result becomes the truncated mean of source rows y - r .. y +
  // r, where rows beyond the border are the border's.
  void BlurColumnsInto(std::int32_t y);  // for all rows, in ascending order

  // The horizontal pass, in place in the result.
  // Deliberate: reads the row by the source's pixel layout and writes it by the result's.
  void BlurRow(std::int32_t y);

  // Both passes of one row, without a way through the result's memory.
  void BlurColumnsAndRow(std::int32_t y);  // for all rows, in ascending order

 private:
  void BlurColumns(std::int32_t y, std::uint32_t* dst);
  void BlurCopiedRow(std::int32_t y);
  const std::uint32_t* SourceRow(std::int64_t y) const;
  std::uint32_t* ResultRow(std::int32_t y) const;

  const PictureEditor& source_;
  PictureEditor& result_;
  std::int32_t radius_;
  std::int64_t box_;  // pixels a side
  ZeroedBlock<std::int32_t> quotients_;
  ZeroedBlock<std::uint32_t> first_, second_, third_;
  ZeroedBlock<std::uint32_t> row_;
  ColumnSums sums_;
  BlurRule rule_;
  const BlurRows& rows_;
};
