// The picture helpers on real files: caption rendering at the published zoom, joining, stretching,
// sizes, the encoder lookup, and files that are read without being held open.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "widget_support.h"
#include "widgets/image_helpers.h"
#include "widgets/png_picture.h"

using namespace widgettest;

namespace {

constexpr Argb kRed{255, 220, 20, 30};
constexpr Argb kBlue{255, 10, 40, 230};

// Window numbers nobody else publishes a zoom for.
constexpr std::uint64_t kZoomedWindow = 0x7F00123401ull;
constexpr std::uint64_t kUnzoomedWindow = 0x7F00123402ull;

TextImageStyle Caption(std::uint64_t window) {
  TextImageStyle style;
  style.text = L"同步进度 Sync";
  style.zoomWindow = window;
  return style;
}

class ImageHelpers : public ::testing::Test {
 protected:
  TempFolder m_folder;
};

}  // namespace

TEST_F(ImageHelpers, CaptionSizeFollowsPublishedZoomAndPaddingAndNeedsText) {
  const std::wstring plain = m_folder / L"plain.png", zoomed = m_folder / L"zoomed.png", padded = m_folder / L"padded.png";
  ASSERT_TRUE(RenderTextToPng(Caption(kUnzoomedWindow), plain));
  {
    const PublishedZoom zoom(kZoomedWindow, L"1.5");
    ASSERT_TRUE(RenderTextToPng(Caption(kZoomedWindow), zoomed));
  }
  TextImageStyle pad = Caption(kUnzoomedWindow);
  pad.padX = 7.0f;
  pad.padY = 5.0f;
  ASSERT_TRUE(RenderTextToPng(pad, padded));

  UINT w1 = 0, h1 = 0, w15 = 0, h15 = 0, wp = 0, hp = 0;
  ASSERT_TRUE(GetImageSize(plain, w1, h1));
  ASSERT_TRUE(GetImageSize(zoomed, w15, h15));
  ASSERT_TRUE(GetImageSize(padded, wp, hp));
  ASSERT_GT(w1, 20u);
  ASSERT_GT(h1, 10u);
  EXPECT_NEAR(static_cast<double>(w15) / w1, 1.5, 0.12) << w1 << " -> " << w15;
  EXPECT_NEAR(static_cast<double>(h15) / h1, 1.5, 0.12) << h1 << " -> " << h15;
  // ceil(measured + pad) with whole-pixel padding is exactly the unpadded size plus the padding,
  // and the left padding holds no ink. (The ink's colour and the transparent rest are checked
  // through the bar's captions.)
  EXPECT_EQ(wp, w1 + 7);
  EXPECT_EQ(hp, h1 + 5);
  const auto picture = ReadPicture(padded);
  ASSERT_TRUE(picture);
  for (int y = 0; y < picture->height; ++y) {
    for (int x = 0; x < 6; ++x) EXPECT_EQ(picture->at(x, y).a, 0) << x << "," << y;
  }

  // With the zoom gone again the caption is back at its plain size.
  ASSERT_TRUE(RenderTextToPng(Caption(kZoomedWindow), zoomed));
  ASSERT_TRUE(GetImageSize(zoomed, w15, h15));
  EXPECT_EQ(w15, w1);
  EXPECT_EQ(h15, h1);

  // No text, no picture.
  const std::wstring empty = m_folder / L"empty.png";
  EXPECT_FALSE(RenderTextToPng(TextImageStyle{}, empty));
  EXPECT_FALSE(FileExists(empty));
}

TEST_F(ImageHelpers, CombinePlacesBothPicturesPixelExactly) {
  struct Case {
    const char* name;
    int lw, lh, rw, rh, overlap, offset;
    int width, height;  // expected output size
    RECT left, right;   // expected placement
  };
  const Case cases[] = {
      // Heights 20 and 30: the shorter one sits at y 5.
      {"side by side", 10, 20, 15, 30, 0, 0, 25, 30, {0, 5, 10, 25}, {10, 0, 25, 30}},
      {"right covers the overlap", 10, 30, 15, 20, 4, 1, 21, 30, {0, 0, 10, 30}, {6, 6, 21, 26}},
      {"overlap wider than left counts as 0", 10, 20, 15, 30, 12, 0, 25, 30, {0, 5, 10, 25}, {10, 0, 25, 30}},
      {"overlap equal to left width", 10, 20, 15, 20, 10, 0, 15, 20, {0, 0, 10, 20}, {0, 0, 15, 20}},
      {"odd difference rounds down", 8, 7, 6, 12, 0, -2, 14, 12, {0, 2, 8, 9}, {8, -2, 14, 10}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::wstring left = m_folder / L"l.png", right = m_folder / L"r.png", out = m_folder / L"out.png";
    WritePng(left, c.lw, c.lh, kRed);
    WritePng(right, c.rw, c.rh, kBlue);
    ASSERT_EQ(CombinePngHorizontally(left, right, out, c.overlap, c.offset), out);
    const auto picture = ReadPicture(out);
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->width, c.width);
    ASSERT_EQ(picture->height, c.height);
    int mismatches = 0;
    for (int y = 0; y < c.height; ++y) {
      for (int x = 0; x < c.width; ++x) {
        const POINT p{x, y};
        const Argb expected = ::PtInRect(&c.right, p) ? kBlue : ::PtInRect(&c.left, p) ? kRed : kTransparent;
        const Argb actual = picture->at(x, y);
        if (!(actual == expected) && mismatches++ < 5) {
          ADD_FAILURE() << "pixel " << x << "," << y << ": " << ::testing::PrintToString(actual) << " expected "
                        << ::testing::PrintToString(expected);
        }
      }
    }
    EXPECT_EQ(mismatches, 0);
  }
}

TEST_F(ImageHelpers, CombineFailsWithoutOutputOnBadInput) {
  const std::wstring good = m_folder / L"good.png", corrupt = m_folder / L"corrupt.png", out = m_folder / L"out.png";
  WritePng(good, 4, 4, kRed);
  WriteBytes(corrupt, {0x89, 'P', 'N', 'G', 0, 1, 2, 3});
  const std::pair<std::wstring, std::wstring> inputs[] = {
      {m_folder / L"missing.png", good}, {good, m_folder / L"missing.png"}, {corrupt, good}, {good, corrupt}};
  for (const auto& [left, right] : inputs) {
    EXPECT_EQ(CombinePngHorizontally(left, right, out, 0, 0), L"");
    EXPECT_FALSE(FileExists(out));
  }
}

TEST_F(ImageHelpers, StretchReachesTheExactSizeAndSparesTheDestinationOnFailure) {
  const std::wstring source = m_folder / L"icon.png", target = m_folder / L"icons.png";
  WritePng(source, 10, 20, kRed);
  ASSERT_TRUE(StretchPngToFile(source, target, 37, 13));
  const auto picture = ReadPicture(target);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->width, 37);
  EXPECT_EQ(picture->height, 13);
  EXPECT_EQ(picture->at(18, 6), kRed);

  // A missing source (file or folder) returns before the destination is touched.
  const std::vector<BYTE> before = ReadBytes(target);
  for (const std::wstring& missing : {m_folder / L"nothing.png", m_folder / L"no-folder\\nothing.png"}) {
    EXPECT_FALSE(StretchPngToFile(missing, target, 5, 5));
    EXPECT_EQ(ReadBytes(target), before);
    EXPECT_FALSE(StretchPngToFile(missing, m_folder / L"new.png", 5, 5));
    EXPECT_FALSE(FileExists(m_folder / L"new.png"));
  }
}

TEST_F(ImageHelpers, ImageSizeLeavesOutputsAloneOnFailure) {
  const std::wstring good = m_folder / L"good.png";
  WritePng(good, 13, 7, kBlue);
  UINT width = 777, height = 888;
  ASSERT_TRUE(GetImageSize(good, width, height));
  EXPECT_EQ(width, 13u);
  EXPECT_EQ(height, 7u);

  std::vector<BYTE> truncated = ReadBytes(good);
  truncated.resize(truncated.size() / 2);
  const std::wstring broken[] = {m_folder / L"garbage.png", m_folder / L"truncated.png", m_folder / L"empty.png",
                                 m_folder / L"missing.png"};
  WriteBytes(broken[0], {'n', 'o', 't', ' ', 'a', ' ', 'p', 'n', 'g'});
  WriteBytes(broken[1], truncated);
  WriteBytes(broken[2], {});
  for (const std::wstring& path : broken) {
    width = 777;
    height = 888;
    EXPECT_FALSE(GetImageSize(path, width, height));
    EXPECT_EQ(width, 777u);
    EXPECT_EQ(height, 888u);
  }
}

TEST_F(ImageHelpers, EncoderLookupIsExactAndCaseSensitive) {
  // GDI+'s PNG encoder.
  const CLSID pngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
  CLSID found{};
  EXPECT_GE(GetEncoderClsid(L"image/png", &found), 0);
  EXPECT_TRUE(::IsEqualCLSID(found, pngEncoder));
  for (const wchar_t* other : {L"image/PNG", L"image/pn"}) {
    CLSID untouched = pngEncoder;
    untouched.Data1 = 1;
    EXPECT_EQ(GetEncoderClsid(other, &untouched), -1) << other;
    EXPECT_EQ(untouched.Data1, 1u);
  }
}

TEST_F(ImageHelpers, LoadedPicturesDoNotHoldTheirFiles) {
  const std::wstring path = m_folder / L"shown.png";
  WritePng(path, 6, 6, kRed);
  const corvane::unique_hbitmap shown = imageutil::LoadPngBitmap(path);
  ASSERT_TRUE(shown);
  // The bar renders the same file name again while a button shows it, and may delete it.
  TextImageStyle style = Caption(kUnzoomedWindow);
  EXPECT_TRUE(RenderTextToPng(style, path));
  EXPECT_EQ(CombinePngHorizontally(path, path, path, 0, 0), path) << "an input may also be the output";
  EXPECT_TRUE(::DeleteFileW(path.c_str())) << ::GetLastError();
  EXPECT_EQ(imageutil::GetBitmapSize(shown.get()).cx, 6);
}

TEST_F(ImageHelpers, UnknownFontFamilyFallsBackToSansSerifOrFailsCleanly) {
  TextImageStyle style = Caption(kUnzoomedWindow);
  style.fontName = L"No Such Family Anywhere";
  const std::wstring path = m_folder / L"fallback.png";
  // Windows always has GDI+'s generic sans-serif family; a bare Wine prefix may have neither name.
  bool generic = false;
  for (const wchar_t* name : {L"Microsoft Sans Serif", L"Tahoma"}) {
    const Gdiplus::FontFamily family(name);
    generic = generic || family.GetLastStatus() == Gdiplus::Ok;
  }
  ASSERT_EQ(RenderTextToPng(style, path), generic);
  if (!generic) {
    EXPECT_FALSE(FileExists(path));
    return;
  }
  const auto picture = ReadPicture(path);
  ASSERT_TRUE(picture);
  EXPECT_GT(picture->width, 20);
  EXPECT_TRUE(std::any_of(picture->pixels.begin(), picture->pixels.end(), [](const Argb& p) { return p.a > 200; }));
}
