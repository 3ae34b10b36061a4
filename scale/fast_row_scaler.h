// Makes the rows of the fast scaler, in vector instructions where that is possible.
#pragma once

#include <cstdint>

#include "scale/fast_blocks.h"
#include "scale/fast_rows.h"

// A local object of one call: some 32 KB, no other memory. For the host's thread only.
class FastRowScaler {
 public:
  // resultHeight: rows that will be made. Large results of repeated rows are written past the
  // caches.
  FastRowScaler(const RowTask& task, std::int32_t resultHeight, VectorLevel level);

  // Whether rows are made in vector instructions: not at kScalar, and not for sizes that no real
  // picture has.
  bool IsVectorised() const { return kernels_ != nullptr; }

  // Makes one row of the result. A source row, by its address, that was also the last one must
  // hold the same pixels as then, unless Settle came between. `next`: the source row of the next
  // call, if there is one already; its pixels come into the caches meanwhile, and nothing else.
  void Scale(const std::uint32_t* source, std::uint32_t* result,
             const std::uint32_t* next = nullptr);

  // To be called before other code may run: it may look at the rows made and change the source's.
  void Settle();

 private:
  static constexpr std::int32_t kPiece = 4096;  // pixels

  void FillColumns(std::int32_t first, std::int32_t count);
  void Average(const std::uint32_t* source, const std::uint32_t* next, std::uint32_t* result) const;
  void Build(const std::uint32_t* source, const std::uint32_t* next, std::int32_t first,
             std::int32_t count, std::uint32_t* result) const;

  RowTask task_;
  const FastRows* kernels_;
  Recolouring recolouring_;
  bool isSameWidth_;
  bool repeats_;  // source rows come more than once: they are made in row_ and copied from there
  bool streams_;  // past the caches
  std::int32_t filled_ = 0;  // columns in the table that reach far enough for the kernels
  const std::uint32_t* built_ = nullptr;  // the source row that row_ was made of
  std::int32_t columns_[kPiece];          // first source column of each destination column
  std::uint32_t row_[kPiece];
};
