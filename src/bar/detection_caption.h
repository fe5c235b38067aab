#pragma once
// The caption whose rendered size is the bar's text unit: "设置" in the product font at 12 px.
// The bar renders it again at every re-measure; the build renders it once at zoom 1.0 so that the
// picture is already there when an Explorer window is attached and measured.
#include <cstdint>

#include "widgets/image_helpers.h"

namespace bar {

inline constexpr const wchar_t* kDetectionPicture = L"CorvaneSkin\\detection.png";

// The caption in the bar's caption colour, scaled by the zoom the client publishes for zoomWindow.
imageutil::TextImageStyle DetectionCaption(std::uint64_t zoomWindow);

}  // namespace bar
