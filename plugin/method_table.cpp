#include "plugin/method_table.h"

#include "plugin/methods.h"

namespace {

constexpr std::uintptr_t kPublic = 0x40000;

REALmethodDefinition pictureMethods[] = {
    {reinterpret_cast<REALroutine>(DrawPictureFZVQ),
     nullptr,
     "DrawPictureFZVQ(pic as picture, x as double, y as double, alpha as double = 1.0, "
     "yield as integer = 0) as boolean",
     kPublic,
     {0, 0}},
    {reinterpret_cast<REALroutine>(ScaleZVQ),
     nullptr,
     "ScaleZVQ(width as integer, height as integer, AntiAlias as boolean=false, "
     "YieldTicks as integer=0) as picture",
     kPublic,
     {0, 0}},
    {reinterpret_cast<REALroutine>(ScaleImageAndMaskZVQ),
     nullptr,
     "ScaleImageAndMaskZVQ(width as integer, height as integer, AntiAlias as boolean=false, "
     "YieldTicks as integer=0) as picture",
     kPublic,
     {0, 0}},
    {reinterpret_cast<REALroutine>(ScalingZVQ),
     nullptr,
     "ScalingZVQ(mode as integer, width as integer, height as integer, "
     "yield as integer = 0) as picture",
     kPublic,
     {0, 0}},
    {reinterpret_cast<REALroutine>(BlurZVQ),
     nullptr,
     "BlurZVQ(Radius as double, yield as integer = 0) as picture",
     kPublic,
     {0, 0}},
};

}  // namespace

REALclassDefinition pictureClass = {
    13,
    "Picture",
    {0, 0, 0, 0, 0},
    nullptr,
    0,  // properties
    pictureMethods,
    sizeof(pictureMethods) / sizeof(pictureMethods[0]),
    nullptr,
    0,  // four-word entries
    {0, 0, 0},
    {0, 0},
    nullptr,
    0,  // five-word entries
    kPublic,
    nullptr,
    0,  // shared properties
    nullptr,
    0,  // shared methods
};
