#pragma once
// Where the login prompt puts its one visible button and its background picture, from the client
// state and the size the view gave it. Pure arithmetic; all halvings are integer divisions.
namespace promptlayout {

enum class Background { kNone, kLogin, kSettingsMedium, kSettingsLarge };

// Indices of the prompt's buttons, in the order the prompt holds them.
inline constexpr int kLoginButton = 0;
inline constexpr int kMediumSettingsButton = 1;
inline constexpr int kLargeSettingsButton = 2;
inline constexpr int kSmallSettingsButton = 3;

struct Placement {
  int button = -1;  // the one button shown; -1 shows nothing (signed in with sync ready)
  int x = 0, y = 0, width = 0, height = 0;
  Background background = Background::kNone;
  int backgroundX = 0, backgroundY = 0;
};

Placement Place(bool signedIn, bool syncReady, int width, int height) noexcept;

}  // namespace promptlayout
