// The client-state readers and the helpers under them, against the real (Wine) registry: the
// opening every reader shares (root key, a currentUser of at least 11 characters, its own values),
// what each makes of the values it finds, and values of any type, shape and size.
#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "client/registry.h"
#include "platform/handles.h"
#include "registry_fixture.h"

namespace registrytest {
namespace {

// A reader's outputs joined by '|' on success; nothing on failure, and "touched" when a failing
// reader changed an out-parameter.
using Outcome = std::optional<std::wstring>;
Outcome Result(bool ok, const std::wstring& outputs, bool untouched) {
  return ok ? Outcome(outputs) : untouched ? Outcome() : Outcome(L"touched");
}

// A reader called with sentinel out-parameters.
template <bool (*Read)(std::wstring&) noexcept>
Outcome Text() {
  std::wstring text = L"-";
  const bool ok = Read(text);
  return Result(ok, text, text == L"-");
}

enum ReaderId { kLogin, kNotOpenSync, kOpenSync, kLogo, kSpace, kAdvertising };
// What the log says when the per-user key or one of a reader's values is missing; each "@" stands
// for the per-user key "Software\varnowe\Halvex\u0123456789". The cut-off "exis" is the log's own.
const wchar_t kLoginMissing[] = L"@ not exist or @\\bLogin not exist";
const wchar_t kSyncMissing[] = L"@ not exist or @\\bLogin not exist or @\\bOpenSync not exis";
const struct Reader {
  const wchar_t* function;
  const wchar_t* level;  // of an opening failure: only Info lines reach the product's log
  std::vector<std::wstring> values;
  Outcome (*call)();
  const wchar_t* missing;
} kReaders[] = {
    {L"regUtil::checkReadyLogin", L"Info", {L"bLogin"}, [] { return Result(regUtil::checkReadyLogin(), L"", true); },
     kLoginMissing},
    {L"regUtil::checkReadyLoginNotOpenSync", L"Info", {L"bLogin", L"bOpenSync"},
     [] { return Result(regUtil::checkReadyLoginNotOpenSync(), L"", true); }, kSyncMissing},
    {L"regUtil::checkReadyLoginAndOpenSync", L"Info", {L"bLogin", L"bOpenSync"},
     Text<regUtil::checkReadyLoginAndOpenSync>, kSyncMissing},
    {L"regUtil::getLogoPath", L"Debug", {L"userLogoPath"}, Text<regUtil::getLogoPath>, kLoginMissing},
    {L"regUtil::getCloudSpace", L"Info", {L"totalSpace", L"usedSpace"}, [] {
       std::uint64_t total = 7, used = 8;
       const bool ok = regUtil::getCloudSpace(total, used);
       return Result(ok, std::to_wstring(total) + L"|" + std::to_wstring(used), total == 7 && used == 8);
     }, L"@ not exist or @\\totalSpace not exist or @\\usedSpace not exis"},
    {L"regUtil::getAdvertisingInfo", L"Info", {L"advertisingId", L"advertisingTitle"}, [] {
       std::wstring id = L"-", title = L"-";
       const bool ok = regUtil::getAdvertisingInfo(id, title);
       return Result(ok, id + L"|" + title, id == L"-" && title == L"-");
     }, L"@ not exist or @\\advertisingId not exist or @\\advertisingTitle not exis"},
};

class Readers : public RegistryTest {
 protected:
  // Values under which every reader would succeed (the sync readers as the flag says).
  void SetComplete(const std::wstring& key, bool syncOn) const {
    for (const auto& [name, text] : std::vector<std::pair<const wchar_t*, std::wstring>>{
             {L"bLogin", L"1"}, {L"bOpenSync", syncOn ? L"1" : L"0"}, {L"syncPath", m_folder},
             {L"userLogoPath", m_logo}, {L"totalSpace", L"2147483648"}, {L"usedSpace", L"1"},
             {L"advertisingId", L"a"}, {L"advertisingTitle", L"t"}})
      SetText(key, name, text);
  }
  // No reader or helper may leave a key open, on any path.
  void TearDown() override {
    EXPECT_EQ(Keys::value().load(), m_keys);
    RegistryTest::TearDown();
  }
  using Keys = corvane::LiveCount<corvane::null_handle_traits<HKEY, corvane::detail::CloseKey>>;
  const long m_keys = Keys::value().load();
  const std::wstring m_folder = MakeFolder(L"Sync"), m_logo = MakeFile(L"logo.png");
};

TEST_F(Readers, EachMissingPieceFailsWithOneLineAtTheReadersLevel) {
  enum Setup { kNothing, kRootWithoutUser, kShortUser, kNoUserKey, kFirstValueMissing, kLastValueMissing };
  for (const Reader& reader : kReaders) {
    for (int setup = kNothing; setup <= kLastValueMissing; ++setup) {
      SCOPED_TRACE(testing::Message() << "setup " << setup << ", reader " << (&reader - kReaders));
      DeleteHalvexTree();
      if (setup == kRootWithoutUser) SetText(kRoot, L"somethingElse", L"x");
      if (setup == kShortUser) SetUser(L"u012345678");
      if (setup == kShortUser) SetComplete(kRoot + L"\\u012345678", &reader == &kReaders[kOpenSync]);
      if (setup >= kNoUserKey) SetUser(kUser);
      if (setup >= kFirstValueMissing) {
        SetComplete(kUserKey, &reader == &kReaders[kOpenSync]);
        const std::wstring& gone = setup == kFirstValueMissing ? reader.values.front() : reader.values.back();
        ASSERT_EQ(::RegDeleteKeyValueW(HKEY_CURRENT_USER, kUserKey.c_str(), gone.c_str()), ERROR_SUCCESS);
      }
      ClearLog();
      EXPECT_EQ(reader.call(), Outcome());
      std::wstring message = setup < kShortUser ? L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex not exist or "
                                                   L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\currentUser not exist"
                             : setup == kShortUser ? L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\currentUser value invalid"
                                                   : reader.missing;
      for (size_t at; (at = message.find(L'@')) != message.npos;) message.replace(at, 1, L"Software\\varnowe\\Halvex\\u0123456789");
      std::vector<std::pair<std::wstring, std::wstring>> lines;
      for (const logtest::LogLine& line : LogOf(reader.function)) lines.emplace_back(line.tag, line.message);
      EXPECT_EQ(lines, (std::vector<std::pair<std::wstring, std::wstring>>{{reader.level, message}}));
    }
  }
  // The current user alone needs only the value, of any length.
  DeleteHalvexTree();
  EXPECT_EQ(Text<regUtil::getCurrentUser>(), Outcome());
  SetUser(L"");
  EXPECT_EQ(Text<regUtil::getCurrentUser>(), Outcome(L""));
}

// bLogin counts only when it reads as the number 1, bOpenSync as on from 1 (32-bit parse rule).
TEST_F(Readers, LoginAndSyncFlagsSplitBetweenTheSyncReaders) {
  // currentUser without its terminator still names the per-user key.
  SetRaw(kRoot, L"currentUser", REG_SZ, kUser.c_str(), static_cast<DWORD>(kUser.size() * sizeof(wchar_t)));
  SetUserValue(L"syncPath", m_folder);
  const struct { const wchar_t *bLogin, *bOpenSync; bool notOpenSync, andOpenSync; } cases[] = {
      {L"1", L"0", true, false},  {L"1", L"1", false, true},   {L"1", L"2", false, true},
      {L"1", L"-1", true, false}, {L"0", L"0", false, false},  {L"2", L"1", false, false},
      {L" 1x", L"1", false, true}, {L"1", L"99999999999", true, false}, {L"4294967297", L"1", false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "row " << (&c - cases));
    SetUserValue(L"bLogin", c.bLogin);
    SetUserValue(L"bOpenSync", c.bOpenSync);
    EXPECT_EQ(std::make_tuple(kReaders[kLogin].call(), kReaders[kNotOpenSync].call(), kReaders[kOpenSync].call()),
              std::make_tuple(Result(c.notOpenSync || c.andOpenSync, L"", true), Result(c.notOpenSync, L"", true),
                              Result(c.andOpenSync, m_folder + L"\\", true)));
  }
  SetRaw(kUserKey, L"bLogin", REG_BINARY, "1\0", 2);  // a flag of any type is read as text
  EXPECT_TRUE(regUtil::checkReadyLogin());
}

// The folder comes back with backslashes and one trailing backslash, and must exist.
TEST_F(Readers, SyncPathIsNormalisedAndMustBeAFolder) {
  SetUser(kUser);
  SetComplete(kUserKey, true);
  std::wstring slashed = m_folder;
  std::replace(slashed.begin(), slashed.end(), L'\\', L'/');
  const Outcome folder = m_folder + L"\\";
  const struct { std::wstring stored; Outcome expected; } cases[] = {
      {m_folder, folder}, {m_folder + L"\\", folder}, {slashed + L"/", folder}, {slashed + L"\\", folder},
      {m_folder + L"\\\\", folder},  // one of two trailing backslashes goes, none is added
      {m_folder + L"\\missing", Outcome()}, {m_folder + L"\\missing\\", Outcome()}, {m_logo, Outcome()},
      {L"", Outcome()},
  };
  for (const auto& c : cases) {
    SetUserValue(L"syncPath", c.stored);
    EXPECT_EQ(kReaders[kOpenSync].call(), c.expected) << "row " << (&c - cases);
  }
}

TEST_F(Readers, AccountValuesNeedAFileMoreThanOneGibibyteAndTwoTexts) {
  SetUser(kUser);
  // The reader's values in order (the logo reader has one) and its outcome.
  const struct { ReaderId reader; std::wstring first, second; Outcome expected; } cases[] = {
      {kLogo, m_logo, L"", m_logo}, {kLogo, m_folder, L"", Outcome()}, {kLogo, L"", L"", Outcome()},
      {kLogo, m_folder + L"\\missing.png", L"", Outcome()}, {kSpace, L"1073741824", L"5", Outcome()},
      {kSpace, L"1073741825", L"5", L"1073741825|5"}, {kSpace, L"2147483648", L"xyz", L"2147483648|0"},
      {kSpace, L"9223372036854775808", L"1", Outcome()},                     // out of range: 0
      {kSpace, L"-1", L"-2", L"18446744073709551615|18446744073709551614"},  // compared unsigned
      {kSpace, L"2147483648", L"4294967296", L"2147483648|4294967296"},  // used is not compared with total
      {kAdvertising, L"a42", L"offer", L"a42|offer"}, {kAdvertising, L"a42", L"", Outcome()},
      {kAdvertising, L"", L"offer", Outcome()}, {kAdvertising, L" ", L" ", L" | "},
  };
  for (const auto& c : cases) {
    const Reader& reader = kReaders[c.reader];
    SetUserValue(reader.values.front(), c.first);
    if (reader.values.size() == 2) SetUserValue(reader.values.back(), c.second);
    EXPECT_EQ(reader.call(), c.expected) << "row " << (&c - cases);
  }
  const std::wstring title(512 * 1024 - 1, L'7');  // with its null: exactly 1 MiB, read whole
  SetUserValue(L"advertisingTitle", title);
  std::wstring id, read;
  EXPECT_TRUE(regUtil::getAdvertisingInfo(id, read) && read == title) << "read " << read.size() << " characters";
}

TEST_F(Readers, DpiZoomIsReadForTheWindowNumber) {
  const auto zoomOf = [](std::uint64_t window) {
    double zoom = 3.0;  // 3.0: left as it was
    return std::pair(regUtil::getDpiZoom(window, zoom), zoom);
  };
  const std::uint64_t window = 0x1234567890ull;  // wider than 32 bits: value name "78187493520"
  EXPECT_EQ(zoomOf(window), std::pair(false, 3.0));  // no key
  SetText(kZoomKey, L"4660", L"2");                  // the low 32 bits only: another window
  EXPECT_EQ(zoomOf(window), std::pair(false, 3.0));  // key, but not this value
  for (const auto& [stored, zoom] : {std::pair{L"1.25", 1.25}, {L"0", 0.0}, {L"abc", 3.0}}) {
    SetText(kZoomKey, L"78187493520", stored);
    EXPECT_EQ(zoomOf(window), std::pair(true, zoom)) << stored;
  }
  SetText(kZoomKey, L"18446744073709551615", L"1.75");
  EXPECT_EQ(zoomOf(std::numeric_limits<std::uint64_t>::max()), std::pair(true, 1.75));
}

// Raw value bytes written as a narrow literal, without the literal's own terminator.
template <std::size_t N>
std::string Raw(const char (&text)[N]) { return std::string(text, N - 1); }

// The number helper takes exactly four bytes of any type, the text helper any bytes as UTF-16.
TEST_F(Readers, HelpersTakeAnyTypeAsNumberOrText) {
  const std::wstring key = kRoot + L"\\scratch";
  EXPECT_FALSE(regUtil::KeyExists(key));
  EXPECT_EQ(regUtil::ReadRegistryValue(key, L"v"), L"");
  EXPECT_EQ(regUtil::ReadRegistryDword(key, L"v"), 0u);
  const struct { const wchar_t* name; DWORD type; std::string bytes; std::uint32_t number; std::wstring text; }
  cases[] = {
      {L"dword", REG_DWORD, Raw("\x07\0\0\0"), 7, L"\x0007"}, {L"dwordDigit", REG_DWORD, Raw("1\0\0\0"), 0x31, L"1"},
      {L"qword", REG_QWORD, Raw("\x09\0\0\0\0\0\0\0"), 0, L"\x0009"}, {L"empty", REG_SZ, Raw("\0\0"), 0, L""},
      {L"short", REG_BINARY, Raw("\x01\x02"), 0, L"\x0201"}, {L"none", REG_NONE, "", 0, L""},
      {L"digit", REG_SZ, Raw("7\0\0\0"), 0x37, L"7"},  // "7" and its null: four bytes
      {L"unterminated", REG_SZ, Raw("a\0b\0c\0d\0e\0f\0g\0h\0i\0j\0"), 0, L"abcdefghij"},
      {L"odd", REG_BINARY, Raw("1\0" "2\0X"), 0, L"12X"},  // the last byte becomes a character
      {L"oddZero", REG_BINARY, Raw("1\0" "2\0\0"), 0, L"12"}, {L"leadingNull", REG_SZ, Raw("\0\0a\0b\0\0\0"), 0, L""},
      {L"multi", REG_MULTI_SZ, Raw("a\0b\0\0\0c\0d\0\0\0\0\0"), 0, L"ab"},
  };
  for (const auto& c : cases) SetRaw(key, c.name, c.type, c.bytes.data(), static_cast<DWORD>(c.bytes.size()));
  EXPECT_TRUE(regUtil::KeyExists(key));
  for (const auto& c : cases) {
    EXPECT_EQ(std::tuple(regUtil::ValueExists(key, c.name), regUtil::ReadRegistryDword(key, c.name),
                         regUtil::ReadRegistryValue(key, c.name)), std::tuple(true, c.number, c.text)) << c.name;
  }
  EXPECT_FALSE(regUtil::ValueExists(key, L"missing"));
  EXPECT_EQ(regUtil::ReadRegistryValue(key, L"missing"), L"");
  EXPECT_FALSE(regUtil::ValueExists(kRoot, L"dword")) << "a value of another key";
}

}  // namespace
}  // namespace registrytest
