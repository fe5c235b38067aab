#pragma once
// What the widget and bar tests share: GDI+ for the program, solid PNG files written and pictures
// read back with GDI+ (never through the widgets' own readers), pixels read from a window or a
// paint call, a parent window that records WM_COMMAND, and real mouse input.
#include <windows.h>

#include <climits>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "../client_registry/saved_value.h"
#include "log_files.h"
#include "platform/gdiplus_headers.h"
#include "platform/window.h"

namespace widgettest {

using logtest::FileExists;
using logtest::ReadBytes;
using logtest::TempFolder;
using logtest::WriteBytes;
using registrytest::ThemeOverride;

// One pixel as stored in a picture, not premultiplied.
struct Argb {
  BYTE a = 0, r = 0, g = 0, b = 0;
  bool operator==(const Argb&) const = default;
};
constexpr Argb kTransparent{0, 0, 0, 0};
inline Argb Opaque(COLORREF colour) { return Argb{255, GetRValue(colour), GetGValue(colour), GetBValue(colour)}; }
// Its colour as 0xRRGGBB.
inline std::uint32_t Rgb(Argb p) { return std::uint32_t{p.r} << 16 | std::uint32_t{p.g} << 8 | p.b; }

// A PNG of width x height in one colour, with blocks of other colours (later blocks win).
using Block = std::pair<RECT, Argb>;
void WritePng(const std::wstring& path, int width, int height, Argb fill, const std::vector<Block>& blocks = {});

struct Picture {
  int width = 0, height = 0;
  std::vector<Argb> pixels;
  Argb at(int x, int y) const { return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)]; }
};
// A picture file read back pixel by pixel (the file is closed again when this returns).
std::optional<Picture> ReadPicture(const std::wstring& path);
inline SIZE PictureSize(const std::wstring& path) {
  const auto picture = ReadPicture(path);
  return picture ? SIZE{picture->width, picture->height} : SIZE{-1, -1};
}
// The distinct colours (0xRRGGBB) of a picture's pixels in columns [from, to) that are at least
// half covered: faint anti-aliased edges are left out, so a caption yields exactly its text colour.
std::set<std::uint32_t> InkColours(const std::wstring& path, int from = 0, int to = INT_MAX);
// What paint draws into a width x height 32-bit buffer first filled with RGB(10, 20, 30).
Picture PaintedBy(int width, int height, const std::function<void(HDC)>& paint);
// Repaints a window now and reads its client area back from the display surface.
std::optional<Picture> CaptureClient(HWND window);

// A top-most pop-up on the display that records every WM_COMMAND it gets and fills its background
// with magenta, so a child's unpainted pixels show. When it goes, the cursor is parked in the
// screen's far corner, away from other programs' windows that may be beneath.
class CCommandRecorder : public corvane::Window<CCommandRecorder> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneWidgetTestParent";
  static std::span<const MessageEntry> MessageMap();
  ~CCommandRecorder() override { ::SetCursorPos(::GetSystemMetrics(SM_CXSCREEN) - 1, ::GetSystemMetrics(SM_CYSCREEN) - 1); }

  using Command = std::pair<WPARAM, LPARAM>;  // a WM_COMMAND's wParam and lParam
  // Creates the pop-up at (x, y) with the given client size, shown without activating it.
  bool CreateAt(int x, int y, int width, int height);

  std::vector<Command> commands;

 private:
  LRESULT OnCommand(UINT, WPARAM wParam, LPARAM lParam, bool&) { return commands.push_back({wParam, lParam}), 0; }
  LRESULT OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, bool&);
};

// A file's last-write time, and setting it back: two writes within one clock tick, or a copy that
// keeps its source's time, leave a file with the same size and time and other bytes.
FILETIME LastWriteTime(const std::wstring& path);
bool SetLastWriteTime(const std::wstring& path, const FILETIME& time);

// Dispatches everything queued for this thread; more rounds, 15 ms apart, let real input and the
// messages it causes (WM_MOUSELEAVE, repaints) arrive.
void Pump(int rounds = 1);
// Real input: the cursor moved to a client point of the window, and the left button.
void MoveMouseTo(HWND window, int x, int y);
void LeftButton(bool down);

}  // namespace widgettest
