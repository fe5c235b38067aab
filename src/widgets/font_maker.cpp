#include "widgets/font_maker.h"

#include "platform/work_profile.h"

namespace imageutil {

std::unique_ptr<Gdiplus::Font> MakeFont(const std::wstring& family, Gdiplus::REAL emSize, INT style,
                                        Gdiplus::Unit unit) {
  // GDI+'s generic sans-serif family is "Microsoft Sans Serif", or "Tahoma" where that is missing.
  for (const wchar_t* name : {family.c_str(), L"Microsoft Sans Serif", L"Tahoma"}) {
    corvane::profile::Add(corvane::profile::Work::FamilyCreate, 0);
    const Gdiplus::FontFamily candidate(name);
    if (candidate.GetLastStatus() != Gdiplus::Ok) continue;
    const corvane::profile::Timed timed(corvane::profile::Work::FontCreate);
    auto font = std::make_unique<Gdiplus::Font>(&candidate, emSize, style, unit);
    if (font->GetLastStatus() == Gdiplus::Ok) return font;
  }
  return nullptr;
}

}  // namespace imageutil
