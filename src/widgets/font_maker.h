#pragma once
// GDI+ fonts by family name, with the fallback the Windows SDK's Font constructor has (a missing
// family becomes the generic sans-serif one) made explicit, so every compiler's headers behave the
// same and no process-wide cached family is used (it would outlive a GDI+ shutdown).
#include <windows.h>

#include <memory>
#include <string>

#include "platform/gdiplus_headers.h"

namespace imageutil {

// Null only when not even the fallback families can be made.
std::unique_ptr<Gdiplus::Font> MakeFont(const std::wstring& family, Gdiplus::REAL emSize, INT style,
                                        Gdiplus::Unit unit);

}  // namespace imageutil
