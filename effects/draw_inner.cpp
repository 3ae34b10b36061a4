#include "effects/draw_inner.h"

#include "effects/draw_blend.h"

InnerPixels::InnerPixels(const PictureEditor& dest, const PictureEditor& source,
                         const PictureEditor* mask)
    : rows_(DrawRowsFor(ChosenVectorLevel())),
      columns_(mask == nullptr || mask->width > source.width ? source.width : mask->width),
      weighted_{source.Layout(), dest.Layout(),
                mask == nullptr ? PixelLayout::kNone : mask->Layout(), mask != nullptr, tables_} {
  possible_ = weighted_.source != PixelLayout::kNone && weighted_.dest != PixelLayout::kNone &&
              (mask == nullptr || weighted_.mask != PixelLayout::kNone);
  fixed_.source = weighted_.source;
  fixed_.dest = weighted_.dest;
}

void InnerPixels::Prepare(const double (&weights)[kCorners]) {
  FillTables(weights);
  fixedForBlack_ = FindShares();
}

// Without a mask the weights are taken as they are: those of a black one may round otherwise.
void InnerPixels::FillTables(const double (&weights)[kCorners]) {
  nothingForWhite_ = true;
  for (std::size_t corner = 0; corner < kCorners; ++corner) {
    double* table = tables_[corner];
    if (!weighted_.masked) {
      table[0] = weights[corner];
      continue;
    }
    for (std::uint32_t red = 0; red < 256; ++red) table[red] = MaskedWeight(red, weights[corner]);
    nothingForWhite_ = nothingForWhite_ && table[255] == 0.0;  // not for infinities and NaN
  }
}

bool InnerPixels::FindShares() {
  double rest = 1.0;
  for (int corner = 0; corner < kCorners; ++corner) {
    if (!FindFixedShare(tables_[corner][0], fixed_.corners[corner])) return false;
    rest -= tables_[corner][0];
  }
  return FindFixedShare(rest > 0.0 ? rest : 0.0, fixed_.rest);
}

void InnerPixels::Draw(std::uint32_t* dest, const Neighbours& source, const Neighbours& mask,
                       std::size_t count) const {
  std::size_t run = count;
  for (std::size_t done = 0; done < count; done += run) {
    MaskRun sort = MaskRun::kBlack;
    if (weighted_.masked) {
      run = rows_.maskRun(mask.From(done), weighted_.mask, count - done, sort);
    }
    if (sort == MaskRun::kBlack && fixedForBlack_) {
      rows_.blendFixed(dest + done, fixed_, source.From(done), run);
    } else if (sort == MaskRun::kWhite && nothingForWhite_) {
      rows_.makeOpaque(dest + done, weighted_.dest, run);
    } else {
      rows_.blendWeighted(dest + done, weighted_, source.From(done),
                          weighted_.masked ? mask.From(done) : Neighbours(), run);
    }
  }
}
