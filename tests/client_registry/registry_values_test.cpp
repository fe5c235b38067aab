// What each state reader makes of the values once the user is valid: the parse rules, the sync
// folder normalisation, the quota threshold, the zoom, and the Debug lines that show the texts.
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "client/registry.h"
#include "registry_fixture.h"

namespace registrytest {
namespace {

const std::wstring& U() { return kUserKey; }

class ReaderValues : public RegistryTest {
 protected:
  void SetUp() override {
    RegistryTest::SetUp();
    SetUser(kUser);
  }
};

// bLogin counts only when it reads as the number 1 (the parse rule has tests of its own).
TEST_F(ReaderValues, LoginAndSyncFlagsSplitBetweenTheSyncReaders) {
  const std::wstring folder = MakeFolder(L"Sync");
  SetUserValue(L"syncPath", folder);
  struct Case {
    std::wstring bLogin, bOpenSync;
    bool notOpenSync, andOpenSync;
  } const cases[] = {
      {L"1", L"0", true, false},
      {L"1", L"1", false, true},
      {L"1", L"2", false, true},
      {L"1", L"-1", true, false},
      {L"1", L"99999999999", true, false},  // out of range: 0
      {L"0", L"0", false, false},
      {L"2", L"1", false, false},
      {L" 1x", L"1", false, true},
      {L"4294967297", L"1", false, false},  // out of range reads as 0, not as a wrapped 1
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.bLogin.size() << "/" << c.bOpenSync.size() << " notOpenSync "
                                    << c.notOpenSync << " andOpenSync " << c.andOpenSync);
    SetUserValue(L"bLogin", c.bLogin);
    SetUserValue(L"bOpenSync", c.bOpenSync);
    ClearLog();
    EXPECT_EQ(regUtil::checkReadyLogin(), c.notOpenSync || c.andOpenSync);
    EXPECT_EQ(LogOf(L"regUtil::checkReadyLogin"), std::vector<LogLine>{Debug(U() + L"\\bLogin value = " + c.bLogin)});
    const std::wstring flags =
        U() + L"\\bLogin value = " + c.bLogin + L", " + U() + L"\\bOpenSync value = " + c.bOpenSync;
    EXPECT_EQ(regUtil::checkReadyLoginNotOpenSync(), c.notOpenSync);
    EXPECT_EQ(LogOf(L"regUtil::checkReadyLoginNotOpenSync"), std::vector<LogLine>{Debug(flags)});

    std::wstring path = L"sentinel";
    EXPECT_EQ(regUtil::checkReadyLoginAndOpenSync(path), c.andOpenSync);
    std::vector<LogLine> expected{Debug(flags)};
    if (c.andOpenSync) {
      EXPECT_EQ(path, folder + L"\\");
      expected.push_back(Debug(L"syncPath = " + folder));
    } else {
      EXPECT_EQ(path, L"sentinel");
      expected.push_back(Debug(U() + L"\\syncPath value invalid"));
    }
    EXPECT_EQ(LogOf(L"regUtil::checkReadyLoginAndOpenSync"), expected);
  }
}

TEST_F(ReaderValues, SyncPathIsNormalisedAndMustBeAFolder) {
  const std::wstring folder = MakeFolder(L"Sync");
  const std::wstring file = MakeFile(L"file.txt");
  std::wstring slashed = folder;
  for (auto& c : slashed) {
    if (c == L'\\') c = L'/';
  }
  SetUserValue(L"bLogin", L"1");
  SetUserValue(L"bOpenSync", L"1");
  const std::wstring invalidDir = L"syncPath value is invalid dir";
  struct Case {
    std::wstring stored;
    std::wstring expected;  // empty: false
    std::wstring update;    // empty: no "update syncPath" line
  } const cases[] = {
      {folder, folder + L"\\", L""},
      {folder + L"\\", folder + L"\\", folder},
      {folder + L"\\\\", folder + L"\\", folder + L"\\"},  // keeps one of two, gains none
      {slashed + L"/", folder + L"\\", L""},
      {slashed, folder + L"\\", L""},
      {slashed + L"\\", folder + L"\\", slashed},
      {folder + L"\\missing", L"", L""},
      {folder + L"\\missing\\", L"", folder + L"\\missing"},
      {file, L"", L""},
      {L"", L"", L""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "case with expected length " << c.expected.size() << ", stored length "
                                    << c.stored.size());
    SetUserValue(L"syncPath", c.stored);
    ClearLog();
    std::wstring path = L"sentinel";
    const bool result = regUtil::checkReadyLoginAndOpenSync(path);
    EXPECT_EQ(result, !c.expected.empty());
    EXPECT_EQ(path, c.expected.empty() ? L"sentinel" : c.expected);
    std::vector<LogLine> expected{Debug(U() + L"\\bLogin value = 1, " + U() + L"\\bOpenSync value = 1"),
                                  Debug(L"syncPath = " + c.stored)};
    if (!c.update.empty()) expected.push_back(Debug(L"update syncPath = " + c.update));
    if (!result) expected.push_back(Debug(invalidDir));
    EXPECT_EQ(LogOf(L"regUtil::checkReadyLoginAndOpenSync"), expected);
  }
}

TEST_F(ReaderValues, LogoPathMustNameAnExistingFile) {
  const std::wstring logo = MakeFile(L"logo.png");
  const std::wstring folder = MakeFolder(L"pictures");
  struct Case {
    std::wstring stored;
    bool expected;
  } const cases[] = {
      {logo, true},
      {folder, false},
      {folder + L"\\missing.png", false},
      {L"", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "stored length " << c.stored.size());
    SetUserValue(L"userLogoPath", c.stored);
    ClearLog();
    std::wstring path = L"sentinel";
    EXPECT_EQ(regUtil::getLogoPath(path), c.expected);
    EXPECT_EQ(path, c.expected ? c.stored : L"sentinel");
    std::vector<LogLine> expected{Debug(L"userLogoPath = " + c.stored)};
    if (!c.expected) expected.push_back(Debug(L"userLogoPath value is invalid file"));
    EXPECT_EQ(LogOf(L"regUtil::getLogoPath"), expected);
  }
}

TEST_F(ReaderValues, CloudSpaceNeedsMoreThanOneGibibyte) {
  constexpr auto kMax = std::numeric_limits<std::uint64_t>::max();
  struct Case {
    std::wstring total, used;
    bool expected;
    std::uint64_t totalOut, usedOut;
  } const cases[] = {
      {L"1073741824", L"5", false, 0, 0},
      {L"1073741825", L"5", true, 1073741825, 5},
      {L"9223372036854775807", L"9223372036854775807", true, 9223372036854775807ull, 9223372036854775807ull},
      {L"9223372036854775808", L"1", false, 0, 0},  // out of range: 0
      {L"-1", L"-2", true, kMax, kMax - 1},         // compared unsigned
      {L"2147483648", L"xyz", true, 2147483648ull, 0},
      {L"2147483648", L"4294967296", true, 2147483648ull, 4294967296ull},  // used is not compared with total
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "expected " << c.expected << " total " << c.totalOut);
    SetUserValue(L"totalSpace", c.total);
    SetUserValue(L"usedSpace", c.used);
    ClearLog();
    std::uint64_t total = 7, used = 8;
    EXPECT_EQ(regUtil::getCloudSpace(total, used), c.expected);
    EXPECT_EQ(total, c.expected ? c.totalOut : 7u);
    EXPECT_EQ(used, c.expected ? c.usedOut : 8u);
    EXPECT_EQ(LogOf(L"regUtil::getCloudSpace"),
              std::vector<LogLine>{Debug(U() + L"\\totalSpace value = " + c.total + L", " + U() +
                                         L"\\usedSpace value = " + c.used)});
  }
}

TEST_F(ReaderValues, AdvertisingNeedsBothTexts) {
  struct Case {
    std::wstring id, title;
    bool expected;
  } const cases[] = {
      {L"a42", L"Spring offer", true},
      {L"a42", L"", false},
      {L"", L"Spring offer", false},
      {L" ", L" ", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.id.size() << "/" << c.title.size());
    SetUserValue(L"advertisingId", c.id);
    SetUserValue(L"advertisingTitle", c.title);
    ClearLog();
    std::wstring id = L"sentinel", title = L"sentinel";
    EXPECT_EQ(regUtil::getAdvertisingInfo(id, title), c.expected);
    EXPECT_EQ(id, c.expected ? c.id : L"sentinel");
    EXPECT_EQ(title, c.expected ? c.title : L"sentinel");
    EXPECT_EQ(LogOf(L"regUtil::getAdvertisingInfo"),
              std::vector<LogLine>{Debug(U() + L"\\advertisingId value = " + c.id + L", " + U() +
                                         L"\\advertisingTitle value = " + c.title)});
  }
}

TEST_F(ReaderValues, DpiZoomIsReadForTheWindowNumber) {
  const std::uint64_t window = 0x1234567890ull;  // wider than 32 bits
  const std::wstring name = L"78187493520";
  const std::wstring missing =
      L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\dpiZoom not exist or "
      L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\dpiZoom\\" + name + L" not exist";

  double zoom = 3.0;
  EXPECT_FALSE(regUtil::getDpiZoom(window, zoom));  // no key
  EXPECT_EQ(zoom, 3.0);
  SetText(kZoomKey, L"4660", L"2");                 // the low 32 bits only: another window
  EXPECT_FALSE(regUtil::getDpiZoom(window, zoom));  // key, but not this value
  EXPECT_EQ(zoom, 3.0);
  EXPECT_EQ(LogOf(L"regUtil::getDpiZoom"), (std::vector<LogLine>{Debug(missing), Debug(missing)}));

  struct Case {
    std::wstring stored;
    double expected;  // 3.0: left as it was
  } const cases[] = {
      {L"1.25", 1.25}, {L" 1.5x", 1.5}, {L"0", 0.0}, {L"abc", 3.0}, {L"1e999", 3.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "stored length " << c.stored.size() << " expected " << c.expected);
    SetText(kZoomKey, name, c.stored);
    ClearLog();
    zoom = 3.0;
    EXPECT_TRUE(regUtil::getDpiZoom(window, zoom));
    EXPECT_DOUBLE_EQ(zoom, c.expected);
    EXPECT_EQ(LogOf(L"regUtil::getDpiZoom"), std::vector<LogLine>{Debug(L"dpiZoom = " + c.stored)});
  }

  SetText(kZoomKey, L"18446744073709551615", L"1.75");
  zoom = 0.0;
  EXPECT_TRUE(regUtil::getDpiZoom(std::numeric_limits<std::uint64_t>::max(), zoom));
  EXPECT_DOUBLE_EQ(zoom, 1.75);
}

}  // namespace
}  // namespace registrytest
