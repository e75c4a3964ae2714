#include "dialogs/modOptions.h"

#include <algorithm>

#include "model/modNumbers.h"
#include "weights/modMirror.h"

float ThresholdFromAnswer(const std::string& answer)
{
    double number = 0;
    float threshold = 0;
    const bool usable = LeadingNumber(answer, &number) && number > 0 && ToFloat(number, &threshold);
    return usable ? threshold : DefaultThreshold;
}

int32_t PointSizeFromAnswer(const std::string& answer, int32_t current)
{
    constexpr int32_t smallest = 1;
    constexpr int32_t largest = 10;
    double number = 0;
    int32_t size = 0;
    // Held before it is rounded too, so that no number is too large for an integer.
    if (!LeadingNumber(answer, &number) || !RoundToInt32(std::clamp<double>(number, -largest, largest), &size)) {
        return current;
    }
    return size == 0 ? current : std::clamp(size, smallest, largest);
}
