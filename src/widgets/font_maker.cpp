#include "widgets/font_maker.h"

namespace imageutil {

std::unique_ptr<Gdiplus::Font> MakeFont(const std::wstring& family, Gdiplus::REAL emSize, INT style,
                                        Gdiplus::Unit unit) {
  // GDI+'s generic sans-serif family is "Microsoft Sans Serif", or "Tahoma" where that is missing.
  for (const wchar_t* name : {family.c_str(), L"Microsoft Sans Serif", L"Tahoma"}) {
    const Gdiplus::FontFamily candidate(name);
    if (candidate.GetLastStatus() != Gdiplus::Ok) continue;
    auto font = std::make_unique<Gdiplus::Font>(&candidate, emSize, style, unit);
    if (font->GetLastStatus() == Gdiplus::Ok) return font;
  }
  return nullptr;
}

}  // namespace imageutil
