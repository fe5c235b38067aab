// The right group's pictures: each label rendered in three colours, each icon scaled to the height
// of its label, and the two joined side by side, one picture per theme and state.
#include <cstdint>

#include "bar/bar_common.h"
#include "bar/right_window.h"
#include "client/theme.h"

namespace {

constexpr Gdiplus::ARGB kWhite = 0xFFFFFFFF;           // 255, 255, 255
constexpr Gdiplus::ARGB kBlue = 0xFF0091FF;            // 0, 145, 255
constexpr Gdiplus::ARGB kZhishikuText = 0xFF5C7EFF;    // 92, 126, 255
// The two light-theme label colours differ by two in red on purpose: they match the two icons'
// own ink (18, 33, 51 and 16, 33, 51), which the artwork was drawn with.
constexpr Gdiplus::ARGB kSyncProgressText = 0xFF122133;  // 18, 33, 51
constexpr Gdiplus::ARGB kSettingsText = 0xFF102133;      // 16, 33, 51

std::wstring Name(const wchar_t* stem, const wchar_t* suffix) { return std::wstring(L"CorvaneSkin\\") + stem + suffix; }

void SetAllImages(CPngToolButton& button, const std::wstring& path) { button.SetImages(path, path, path, path); }

}  // namespace

std::wstring CRightWindow::Skin(const std::wstring& name) const { return m_strModuleFolder + name; }

// The icon is brought to the height of the text line and keeps its own proportions: width =
// icon width x text height / icon height, rounded to the nearest pixel and at least 1. Joined with
// overlap 0 the icon then sits flush beside its label at the same height.
bool CRightWindow::ScaleIconToText(const std::wstring& textPng, const std::wstring& iconPng,
                                   const std::wstring& scaledPng) {
  UINT textWidth = 0, textHeight = 0, iconWidth = 0, iconHeight = 0;
  if (!GetImageSize(textPng, textWidth, textHeight) || !GetImageSize(iconPng, iconWidth, iconHeight)) return false;
  if (iconHeight == 0 || textHeight == 0) return false;
  const auto width = static_cast<int>((static_cast<unsigned long long>(iconWidth) * textHeight + iconHeight / 2) / iconHeight);
  return StretchPngToFile(iconPng, scaledPng, width > 0 ? width : 1, static_cast<int>(textHeight));
}

void CRightWindow::BuildFamily(TextImageStyle& caption, const wchar_t* prefix, const wchar_t* iconStem,
                               Gdiplus::ARGB darkText) {
  struct Variant {
    Gdiplus::ARGB color;
    const wchar_t* textSuffix;
    const wchar_t* iconSuffix;
    const wchar_t* joinedSuffix;
  };
  // Light normal, dark normal, then hover and pressed for both themes.
  const Variant variants[] = {
      {darkText, L"_dt1.png", L"_normal", L"_dd1.png"},
      {kWhite, L"_dt2.png", L"_normal1", L"_dd2.png"},
      {kBlue, L"_dt3.png", L"_pre", L"_dd3.png"},
  };
  for (const Variant& variant : variants) {
    caption.color = variant.color;
    const std::wstring text = Skin(Name(prefix, variant.textSuffix));
    RenderTextToPng(caption, text);
    const std::wstring icon = Skin(Name(iconStem, variant.iconSuffix) + L".png");
    const std::wstring scaled = Skin(Name(iconStem, variant.iconSuffix) + L"s.png");
    ScaleIconToText(text, icon, scaled);
    CombinePngHorizontally(scaled, text, Skin(Name(prefix, variant.joinedSuffix)), 0, 1);
  }
}

void CRightWindow::BuildPictures() {
  for (TextImageStyle* caption : {&m_captionZhishiku, &m_captionSyncProgress, &m_captionSettings}) {
    caption->fontName = L"Microsoft YaHei";
    caption->fontSize = 12.0f;
  }
  // Only the knowledge-base label follows the owner window's published zoom; the sync-progress and
  // settings labels keep zoomWindow 0, which names no Explorer window, so they stay unzoomed.
  m_captionZhishiku.zoomWindow = m_pOwner != nullptr ? bar::WindowNumber(m_pOwner->GetExplorerHwnd()) : 0;

  // The knowledge-base label is rendered only to measure the line its icon is scaled to.
  m_captionZhishiku.text = L"AI工作台";
  m_captionZhishiku.color = kZhishikuText;
  RenderTextToPng(m_captionZhishiku, Skin(L"CorvaneSkin\\zsk_dt.png"));
  ScaleIconToText(Skin(L"CorvaneSkin\\zsk_dt.png"), Skin(L"CorvaneSkin\\zsk.png"), Skin(L"CorvaneSkin\\zsks.png"));

  m_captionSyncProgress.text = L"同步进度";
  BuildFamily(m_captionSyncProgress, L"tb", L"tb", kSyncProgressText);
  m_captionSettings.text = L"设置";
  BuildFamily(m_captionSettings, L"set", L"setting", kSettingsText);
  // Each button's picture carries its label: screen readers are told the same words.
  m_btnSyncProgress.SetAccessibleName(m_captionSyncProgress.text);
  m_btnSettings.SetAccessibleName(m_captionSettings.text);
  m_btnZhishiku.SetAccessibleName(m_captionZhishiku.text);

  ApplyThemeImages();
}

void CRightWindow::ApplyThemeImages() {
  if (theme::IsDarkTheme()) {
    m_btnSyncProgress.SetImages(L"CorvaneSkin\\tb_dd2.png", L"CorvaneSkin\\tb_dd3.png", L"CorvaneSkin\\tb_dd3.png",
                                L"CorvaneSkin\\tb_dd2.png");
    m_btnSettings.SetImages(L"CorvaneSkin\\set_dd2.png", L"CorvaneSkin\\set_dd3.png", L"CorvaneSkin\\set_dd3.png",
                            L"CorvaneSkin\\set_dd2.png");
  } else {
    m_btnSyncProgress.SetImages(L"CorvaneSkin\\tb_dd1.png", L"CorvaneSkin\\tb_dd3.png", L"CorvaneSkin\\tb_dd3.png",
                                L"CorvaneSkin\\tb_dd1.png");
    m_btnSettings.SetImages(L"CorvaneSkin\\set_dd1.png", L"CorvaneSkin\\set_dd3.png", L"CorvaneSkin\\set_dd3.png",
                            L"CorvaneSkin\\set_dd1.png");
  }
  SetAllImages(m_btnZhishiku, L"CorvaneSkin\\zsks.png");
}
