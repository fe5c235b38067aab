#pragma once
// What the widget tests share: GDI+ for the program, a fresh folder, solid PNG files written and
// read back with GDI+, the app theme switched and restored, a zoom published and removed, a parent
// window that records WM_COMMAND, pixels read from a window, and real mouse input.
#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../client_registry/saved_value.h"
#include "log_files.h"
#include "platform/window.h"
#include "platform/gdiplus_headers.h"

namespace widgettest {

using logtest::FileExists;
using logtest::ReadBytes;
using logtest::TempFolder;
using logtest::WriteBytes;

// One pixel as stored in a picture, not premultiplied.
struct Argb {
  BYTE a = 0, r = 0, g = 0, b = 0;
  bool operator==(const Argb&) const = default;
};
void PrintTo(const Argb& pixel, std::ostream* os);
constexpr Argb kTransparent{0, 0, 0, 0};

// A PNG of width x height in one colour, with blocks of other colours (later blocks win).
struct Block {
  RECT rect;
  Argb colour;
};
void WritePng(const std::wstring& path, int width, int height, Argb fill, const std::vector<Block>& blocks = {});

// A picture file read back pixel by pixel (the file is closed again when this returns).
struct Picture {
  int width = 0, height = 0;
  std::vector<Argb> pixels;
  Argb at(int x, int y) const { return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)]; }
};
std::optional<Picture> ReadPicture(const std::wstring& path);

using registrytest::ThemeOverride;

// Publishes a zoom text for a window number under the client's dpiZoom key, removed at the end.
class PublishedZoom {
 public:
  PublishedZoom(std::uint64_t windowNumber, const std::wstring& text);
  ~PublishedZoom();
  PublishedZoom(const PublishedZoom&) = delete;
  PublishedZoom& operator=(const PublishedZoom&) = delete;

 private:
  std::wstring m_name;
};

// A top-most pop-up on the display that records every WM_COMMAND it gets and fills its
// background with kParentColour, so a child's unpainted pixels show.
class CCommandRecorder : public corvane::Window<CCommandRecorder> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneWidgetTestParent";
  static constexpr COLORREF kParentColour = RGB(255, 0, 255);
  static std::span<const MessageEntry> MessageMap();

  struct Command {
    WPARAM wParam;
    LPARAM lParam;
    bool operator==(const Command&) const = default;
  };
  // Creates the pop-up at (x, y) with the given client size, shown without activating it.
  bool CreateAt(int x, int y, int width, int height);

  std::vector<Command> commands;

 private:
  LRESULT OnCommand(UINT, WPARAM wParam, LPARAM lParam, bool&);
  LRESULT OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, bool&);
};
void PrintTo(const CCommandRecorder::Command& command, std::ostream* os);

// Dispatches everything queued for this thread, several rounds apart, so that input and the
// messages it causes (WM_MOUSELEAVE, repaints) have arrived.
void Pump(int rounds = 3);
// Repaints a window now and reads its client area back from the display surface.
std::optional<Picture> CaptureClient(HWND window);
COLORREF ToColorRef(const Argb& pixel);
Argb Opaque(COLORREF colour);

// Real input: the cursor moved to a client point of the window, and the left button.
void MoveMouseTo(HWND window, int x, int y);
void LeftButton(bool down);

}  // namespace widgettest
