// The fast scaler's inner loops for each level. A level takes over what it has nothing better for.
#pragma once

#include "scale/fast_rows.h"

extern const FastRows kFastRowsSse2;
extern const FastRows kFastRowsSse41;
extern const FastRows kFastRowsAvx2;

// In SSE2, for the other levels.
void ColumnsSse2(double step, std::int32_t first, std::int32_t count, std::int32_t* columns);
void PickSse2(const std::uint32_t* source, const std::int32_t* columns, std::int32_t count,
              std::uint32_t* result);
void AverageWideSse2(const std::uint32_t* source, const std::int32_t* columns, std::int32_t count,
                     std::int32_t blockWidth, std::uint32_t* result);
void StreamSse2(const std::uint32_t* source, std::int32_t count, std::uint32_t* result);
void SettleSse2();
