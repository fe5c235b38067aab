// Renders the bar's measuring caption into a skin folder at build time, with the same renderer the
// add-in uses at run time, so "detection.png" exists before the first Explorer window is attached.
#include <windows.h>

#include <cstdio>

#include "bar/detection_caption.h"
#include "platform/gdiplus_session.h"

int wmain(int argc, wchar_t** argv) {
  if (argc != 2) {
    std::fputs("usage: skin-caption <skin folder>\n", stderr);
    return 2;
  }
  const corvane::GdiplusSession gdiplus;
  if (!gdiplus.ok()) return 3;
  std::wstring path = argv[1];
  if (!path.empty() && path.back() != L'\\') path += L'\\';
  // Zoom 1.0: nothing is published for window number 0.
  return imageutil::RenderTextToPng(bar::DetectionCaption(0), path + L"detection.png") ? 0 : 1;
}
