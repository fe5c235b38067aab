#include "namespace/prompt_layout.h"

namespace promptlayout {

namespace {
// The background pictures' sizes the layouts are built around.
constexpr int kLoginWidth = 760, kLoginHeight = 414;
constexpr int kMediumWidth = 437, kMediumHeight = 447;
constexpr int kLargeWidth = 874, kLargeHeight = 879;
}  // namespace

Placement Place(bool signedIn, bool syncReady, int width, int height) noexcept {
  Placement p;
  if (!signedIn) {
    p.button = kLoginButton;
    p.width = 124;
    p.height = 40;
    if (height < kLoginHeight || width < kLoginWidth) {
      p.x = width / 2 - 62;
      p.y = height / 2 - 20;
      return p;
    }
    p.background = Background::kLogin;
    p.backgroundX = (width - kLoginWidth) / 2;
    p.backgroundY = (height - kLoginHeight) / 2;
    p.x = p.backgroundX + 318;
    p.y = p.backgroundY + 374;
    return p;
  }
  if (syncReady) return p;
  if (height < kMediumHeight || width < kMediumWidth) {
    p.button = kSmallSettingsButton;
    p.width = 157;
    p.height = 40;
    p.x = width / 2 - 78;
    p.y = height / 2 - 20;
    return p;
  }
  if (height >= kLargeHeight && width >= kLargeWidth) {
    p.button = kLargeSettingsButton;
    p.background = Background::kSettingsLarge;
    p.backgroundX = (width - kLargeWidth) / 2;
    p.backgroundY = (height - kLargeHeight) / 2;
    p.width = 874;
    p.height = 244;
    p.x = p.backgroundX;
    p.y = p.backgroundY + 635;
    return p;
  }
  p.button = kMediumSettingsButton;
  p.background = Background::kSettingsMedium;
  p.backgroundX = (width - kMediumWidth) / 2;
  p.backgroundY = (height - kMediumHeight) / 2;
  p.width = 437;
  p.height = 122;
  p.x = p.backgroundX;
  p.y = p.backgroundY + 325;
  return p;
}

}  // namespace promptlayout
