// The picture helpers on real files: caption padding and font fallback, joining, stretching, sizes
// and what bad input leaves behind. The bar's tests check the rest on its own pictures: which
// captions follow the published zoom, and that a shown picture's file can be rendered again and
// deleted.
#include <windows.h>

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "widget_support.h"
#include "widgets/image_helpers.h"

using namespace widgettest;

namespace {

constexpr Argb kRed{255, 220, 20, 30};
constexpr Argb kBlue{255, 10, 40, 230};

const TextImageStyle kCaption{.text = L"同步进度 Sync"};

class ImageHelpers : public ::testing::Test {
 protected:
  TempFolder m_folder;
};

}  // namespace

TEST_F(ImageHelpers, CaptionPaddingIsWholePixelsFontFallbackAndTextIsNeeded) {
  const std::wstring plain = m_folder / L"plain.png", padded = m_folder / L"padded.png";
  ASSERT_TRUE(RenderTextToPng(kCaption, plain));
  TextImageStyle pad = kCaption;
  pad.padX = 7.0f;
  pad.padY = 5.0f;
  ASSERT_TRUE(RenderTextToPng(pad, padded));
  const auto unpadded = ReadPicture(plain), picture = ReadPicture(padded);
  ASSERT_TRUE(unpadded && picture);
  // ceil(measured + pad) with whole-pixel padding is exactly the unpadded size plus the padding,
  // and the left padding holds no ink.
  EXPECT_EQ(std::make_pair(picture->width, picture->height), std::make_pair(unpadded->width + 7, unpadded->height + 5));
  for (int i = 0; i < 6 * picture->height; ++i) EXPECT_EQ(picture->at(i % 6, i / 6).a, 0) << i % 6 << "," << i / 6;
  // A family nobody has falls back to GDI+'s generic sans-serif. Windows always has it; where a bare
  // Wine prefix has neither of its names, the render fails and writes no file.
  pad.fontName = L"No Such Family Anywhere";
  const bool generic = Gdiplus::FontFamily(L"Microsoft Sans Serif").GetLastStatus() == Gdiplus::Ok ||
                       Gdiplus::FontFamily(L"Tahoma").GetLastStatus() == Gdiplus::Ok;
  EXPECT_EQ(RenderTextToPng(pad, m_folder / L"fallback.png"), generic);
  EXPECT_EQ(InkColours(m_folder / L"fallback.png"), generic ? std::set<std::uint32_t>{0} : std::set<std::uint32_t>{})
      << "drawn in black, or no file";
  EXPECT_FALSE(RenderTextToPng(TextImageStyle{}, m_folder / L"empty.png")) << "no text, no picture";
  EXPECT_FALSE(FileExists(m_folder / L"empty.png"));
}

TEST_F(ImageHelpers, CombinePlacesBothPicturesPixelExactly) {
  const struct {
    const char* name;
    int lw, lh, rw, rh, overlap, offset;
    int width, height;  // expected output size
    RECT left, right;   // expected placement
  } cases[] = {
      // Heights 20 and 30: the shorter one sits at y 5.
      {"side by side", 10, 20, 15, 30, 0, 0, 25, 30, {0, 5, 10, 25}, {10, 0, 25, 30}},
      {"right covers the overlap", 10, 30, 15, 20, 4, 1, 21, 30, {0, 0, 10, 30}, {6, 6, 21, 26}},
      {"overlap wider than left counts as 0", 10, 20, 15, 30, 12, 0, 25, 30, {0, 5, 10, 25}, {10, 0, 25, 30}},
      {"overlap equal to left width", 10, 20, 15, 20, 10, 0, 15, 20, {0, 0, 10, 20}, {0, 0, 15, 20}},
      {"odd difference rounds down", 8, 7, 6, 12, 0, -2, 14, 12, {0, 2, 8, 9}, {8, -2, 14, 10}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::wstring left = m_folder / L"l.png", right = m_folder / L"r.png", out = m_folder / L"out.png";
    WritePng(left, c.lw, c.lh, kRed);
    WritePng(right, c.rw, c.rh, kBlue);
    ASSERT_EQ(CombinePngHorizontally(left, right, out, c.overlap, c.offset), out);
    const auto picture = ReadPicture(out);
    ASSERT_TRUE(picture);
    ASSERT_EQ(std::make_pair(picture->width, picture->height), std::make_pair(c.width, c.height));
    for (int i = 0, mismatches = 0; i < c.width * c.height; ++i) {
      const POINT p{i % c.width, i / c.width};
      const Argb expected = ::PtInRect(&c.right, p) ? kBlue : ::PtInRect(&c.left, p) ? kRed : kTransparent;
      if (!(picture->at(p.x, p.y) == expected) && mismatches++ < 5) ADD_FAILURE() << "pixel " << p.x << "," << p.y;
    }
  }

  // A source is its bytes, not its size and time: caption A joined, then caption B of the same
  // byte size rendered over it and given A's last-write time back (two renders within one clock
  // tick look like that): the join shows B.
  const std::wstring caption = m_folder / L"caption.png", icon = m_folder / L"icon.png", out = m_folder / L"joined.png";
  WritePng(icon, 6, 6, kBlue);
  TextImageStyle a = kCaption, b = kCaption;
  a.color = 0xFFDC141E;
  b.color = 0xFF0A28E6;
  ASSERT_TRUE(RenderTextToPng(a, caption));
  const FILETIME renderedA = LastWriteTime(caption);
  const size_t sizeA = ReadBytes(caption).size();
  ASSERT_EQ(CombinePngHorizontally(caption, icon, out, 0, 0), out);
  EXPECT_EQ(InkColours(out, 0, 20), std::set<std::uint32_t>{0xDC141E});
  ASSERT_TRUE(RenderTextToPng(b, caption));
  ASSERT_EQ(ReadBytes(caption).size(), sizeA) << "the two captions must be the same byte size for this check";
  ASSERT_TRUE(SetLastWriteTime(caption, renderedA));
  ASSERT_EQ(CombinePngHorizontally(caption, icon, out, 0, 0), out);
  EXPECT_EQ(InkColours(out, 0, 20), std::set<std::uint32_t>{0x0A28E6}) << "the join still shows caption A";
}

// A missing, corrupt, truncated or empty input: every helper fails, writes no output, leaves an
// existing destination as it was and its out-parameters untouched. A good one is measured and
// stretched to the exact size asked.
TEST_F(ImageHelpers, BadInputLeavesEverythingAloneAndGoodInputIsMeasuredAndStretched) {
  const std::wstring good = m_folder / L"good.png", kept = m_folder / L"kept.png", out = m_folder / L"out.png";
  WritePng(good, 13, 7, kBlue);
  WritePng(kept, 3, 3, kRed);
  const std::vector<BYTE> whole = ReadBytes(good);
  const std::wstring bad[] = {m_folder / L"missing.png", m_folder / L"no-folder\\missing.png", m_folder / L"corrupt.png",
                              m_folder / L"garbage.png", m_folder / L"truncated.png", m_folder / L"empty.png"};
  WriteBytes(bad[2], {0x89, 'P', 'N', 'G', 0, 1, 2, 3});
  WriteBytes(bad[3], {'n', 'o', 't', ' ', 'a', ' ', 'p', 'n', 'g'});
  WriteBytes(bad[4], std::vector<BYTE>(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2)));
  WriteBytes(bad[5], {});
  const std::vector<BYTE> keptBytes = ReadBytes(kept);
  for (const std::wstring& input : bad) {
    const std::string name = logtest::Utf8(input);
    EXPECT_EQ(CombinePngHorizontally(input, good, out, 0, 0), L"") << name;
    EXPECT_EQ(CombinePngHorizontally(good, input, out, 0, 0), L"") << name;
    EXPECT_FALSE(FileExists(out)) << name;
    UINT width = 777, height = 888;
    EXPECT_FALSE(GetImageSize(input, width, height)) << name;
    EXPECT_EQ(std::make_pair(width, height), std::make_pair(777u, 888u)) << name;
    if (FileExists(input)) continue;  // a stretch of a missing source returns before the destination
    EXPECT_FALSE(StretchPngToFile(input, kept, 5, 5)) << name;
    EXPECT_EQ(ReadBytes(kept), keptBytes) << name;
  }
  UINT width = 0, height = 0;
  ASSERT_TRUE(GetImageSize(good, width, height));
  EXPECT_EQ(std::make_pair(width, height), std::make_pair(13u, 7u));
  ASSERT_TRUE(StretchPngToFile(good, out, 37, 13));
  const auto stretched = ReadPicture(out);
  ASSERT_TRUE(stretched);
  EXPECT_EQ(std::make_tuple(stretched->width, stretched->height, stretched->at(18, 6)), std::make_tuple(37, 13, kBlue));
}
