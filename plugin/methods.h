// The five methods that the plug-in adds to the host's class "Picture". Called by the host on its
// own thread; the first argument is the picture that the method is called on. A picture that is
// returned carries one reference for the caller. Exceptions are the host's own, passing through.
#pragma once

#include <cstdint>

#include "plugin/host_interface.h"

// A Boolean argument as it arrives: its low byte is the value, the rest of the slot may hold noise.
using REALbooleanSlot = std::int32_t;
inline bool IsTrue(REALbooleanSlot slot) { return (slot & 0xFF) != 0; }

// Draws pic into self at (x, y), fractions of pixels included. False when nothing was drawn.
bool DrawPictureFZVQ(REALpictureStruct* self, REALpictureStruct* pic, double x, double y,
                     double alpha, std::int32_t yield);

// self scaled to width×height: the mean of the pixels under each new one, or a smooth enlargement
// when AntiAlias is true and both sides grow. self itself when it has that size; nil for a nil
// picture, a size below 1 or one that the host cannot make.
REALpictureStruct* ScaleZVQ(REALpictureStruct* self, std::int32_t width, std::int32_t height,
                            REALbooleanSlot AntiAlias, std::int32_t YieldTicks);

// As ScaleZVQ, with the picture's mask scaled alongside and put on the result.
REALpictureStruct* ScaleImageAndMaskZVQ(REALpictureStruct* self, std::int32_t width,
                                        std::int32_t height, REALbooleanSlot AntiAlias,
                                        std::int32_t YieldTicks);

// self resampled to width×height by the filter of a mode, 1..7; nil for anything else.
REALpictureStruct* ScalingZVQ(REALpictureStruct* self, std::int32_t mode, std::int32_t width,
                              std::int32_t height, std::int32_t yield);

// self blurred with a box of 2·trunc(Radius) + 1 pixels a side; self itself for a radius below 1.
REALpictureStruct* BlurZVQ(REALpictureStruct* self, double Radius, std::int32_t yield);
