#include "bar/detection_caption.h"

namespace bar {

imageutil::TextImageStyle DetectionCaption(std::uint64_t zoomWindow) {
  imageutil::TextImageStyle detection;
  detection.zoomWindow = zoomWindow;
  detection.text = L"设置";
  detection.color = 0xFF0091FF;  // 0, 145, 255: the bar's caption colour; the size is what counts
  detection.fontName = L"Microsoft YaHei";
  detection.fontSize = 12.0f;
  return detection;
}

}  // namespace bar
