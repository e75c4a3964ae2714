// Any bytes as a colour map and an opacity map. The first two bytes say how long the colour map is.

#include <algorithm>

#include "memory_file.h"
#include "model/modBitmap.h"
#include "support/scripted.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2) {
        return 0;
    }
    scripted::Reset();
    const size_t rest = size - 2;
    const size_t color = std::min(rest, static_cast<size_t>(data[0] + 256 * data[1]));
    const std::string colorFile = MemoryFile(0, data + 2, color);
    const std::string opacityFile = color < rest ? MemoryFile(1, data + 2 + color, rest - color) : std::string();
    Bitmap bitmap;
    std::string error;
    const BitmapResult result = LoadBitmap(colorFile, opacityFile, &bitmap, &error);
    const auto pixels = 4 * static_cast<uint64_t>(bitmap.Width) * static_cast<uint64_t>(bitmap.Height);
    if ((result == BitmapResult::Done && (bitmap.Pixels.size() != pixels || bitmap.Pixels.size() > 4 * color)) ||
        (result == BitmapResult::Refused && scripted::Log.empty()) ||
        (result == BitmapResult::Failed && error.empty())) {
        __builtin_trap();
    }
    return 0;
}
