// The opening every state reader shares: root key, currentUser, its length and the reader's own
// values, each failure with its own text at the reader's own level.
#include <functional>
#include <string>
#include <vector>

#include "client/registry.h"
#include "registry_fixture.h"

namespace registrytest {
namespace {

const std::wstring kRootMissing =
    L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex not exist or "
    L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\currentUser not exist";
const std::wstring kUserInvalid = L"HKEY_CURRENT_USER\\Software\\varnowe\\Halvex\\currentUser value invalid";

struct Reader {
  std::wstring function;
  bool info;  // Info or Debug for every opening message
  std::vector<std::wstring> values;
  std::wstring missing;
  // Calls the reader with sentinel out-parameters; reports whether they were left alone.
  std::function<bool(bool& untouched)> call;
};

std::vector<Reader> StateReaders() {
  const std::wstring& u = kUserKey;
  return {
      {L"regUtil::checkReadyLogin", true, {L"bLogin"}, u + L" not exist or " + u + L"\\bLogin not exist",
       [](bool& untouched) {
         untouched = true;
         return regUtil::checkReadyLogin();
       }},
      {L"regUtil::checkReadyLoginNotOpenSync", true, {L"bLogin", L"bOpenSync"},
       u + L" not exist or " + u + L"\\bLogin not exist or " + u + L"\\bOpenSync not exis",
       [](bool& untouched) {
         untouched = true;
         return regUtil::checkReadyLoginNotOpenSync();
       }},
      {L"regUtil::checkReadyLoginAndOpenSync", true, {L"bLogin", L"bOpenSync"},
       u + L" not exist or " + u + L"\\bLogin not exist or " + u + L"\\bOpenSync not exis",
       [](bool& untouched) {
         std::wstring path = L"sentinel";
         const bool result = regUtil::checkReadyLoginAndOpenSync(path);
         untouched = path == L"sentinel";
         return result;
       }},
      {L"regUtil::getLogoPath", false, {L"userLogoPath"}, u + L" not exist or " + u + L"\\bLogin not exist",
       [](bool& untouched) {
         std::wstring path = L"sentinel";
         const bool result = regUtil::getLogoPath(path);
         untouched = path == L"sentinel";
         return result;
       }},
      {L"regUtil::getCloudSpace", true, {L"totalSpace", L"usedSpace"},
       u + L" not exist or " + u + L"\\totalSpace not exist or " + u + L"\\usedSpace not exis",
       [](bool& untouched) {
         std::uint64_t total = 7, used = 8;
         const bool result = regUtil::getCloudSpace(total, used);
         untouched = total == 7 && used == 8;
         return result;
       }},
      {L"regUtil::getAdvertisingInfo", true, {L"advertisingId", L"advertisingTitle"},
       u + L" not exist or " + u + L"\\advertisingId not exist or " + u + L"\\advertisingTitle not exis",
       [](bool& untouched) {
         std::wstring id = L"sentinel", title = L"sentinel";
         const bool result = regUtil::getAdvertisingInfo(id, title);
         untouched = id == L"sentinel" && title == L"sentinel";
         return result;
       }},
  };
}

class ReaderOpening : public RegistryTest {
 protected:
  // Values that would satisfy every reader, so that only the missing piece decides.
  void SetCompleteUserValues() {
    const std::wstring folder = MakeFolder(L"Sync");
    SetUserValue(L"bLogin", L"1");
    SetUserValue(L"bOpenSync", L"0");
    SetUserValue(L"syncPath", folder);
    SetUserValue(L"userLogoPath", MakeFile(L"logo.png"));
    SetUserValue(L"totalSpace", L"2147483648");
    SetUserValue(L"usedSpace", L"1");
    SetUserValue(L"advertisingId", L"a1");
    SetUserValue(L"advertisingTitle", L"t1");
  }
};

TEST_F(ReaderOpening, EachMissingPieceFailsWithItsOwnMessageAndLevel) {
  enum class Setup { Nothing, RootWithoutUser, ShortUser, NoUserKey, FirstValueMissing, LastValueMissing };
  struct Scenario {
    const char* name;
    Setup setup;
  } const scenarios[] = {
      {"no root key", Setup::Nothing},
      {"root key without currentUser", Setup::RootWithoutUser},
      {"currentUser of 10 characters", Setup::ShortUser},
      {"no per-user key", Setup::NoUserKey},
      {"first own value missing", Setup::FirstValueMissing},
      {"last own value missing", Setup::LastValueMissing},
  };
  for (const Reader& reader : StateReaders()) {
    for (const Scenario& scenario : scenarios) {
      SCOPED_TRACE(testing::Message() << scenario.name << " / "
                                      << std::string(reader.function.begin(), reader.function.end()));
      DeleteHalvexTree();
      std::wstring expected;
      switch (scenario.setup) {
        case Setup::Nothing:
          expected = kRootMissing;
          break;
        case Setup::RootWithoutUser:
          SetText(kRoot, L"somethingElse", L"x");
          expected = kRootMissing;
          break;
        case Setup::ShortUser:
          SetUser(L"u012345678");
          SetText(kRoot + L"\\u012345678", L"bLogin", L"1");
          expected = kUserInvalid;
          break;
        case Setup::NoUserKey:
          SetUser(kUser);
          expected = reader.missing;
          break;
        case Setup::FirstValueMissing:
        case Setup::LastValueMissing: {
          SetUser(kUser);
          SetCompleteUserValues();
          const std::wstring& gone =
              scenario.setup == Setup::FirstValueMissing ? reader.values.front() : reader.values.back();
          ASSERT_EQ(::RegDeleteKeyValueW(HKEY_CURRENT_USER, kUserKey.c_str(), gone.c_str()), ERROR_SUCCESS);
          expected = reader.missing;
          break;
        }
      }
      ClearLog();
      bool untouched = false;
      EXPECT_FALSE(reader.call(untouched));
      EXPECT_TRUE(untouched);
      const LogLine line = reader.info ? Info(expected) : Debug(expected);
      EXPECT_EQ(LogOf(reader.function), std::vector<LogLine>{line});
    }
  }
}

TEST_F(ReaderOpening, GetCurrentUserNeedsOnlyTheValue) {
  std::wstring user = L"sentinel";
  EXPECT_FALSE(regUtil::getCurrentUser(user));
  EXPECT_EQ(user, L"sentinel");
  EXPECT_EQ(LogOf(L"regUtil::getCurrentUser"), std::vector<LogLine>{Debug(kRootMissing)});

  for (const std::wstring& stored : {std::wstring(L"u012345678"), kUser, std::wstring()}) {
    ClearLog();
    SetUser(stored);
    user = L"sentinel";
    EXPECT_TRUE(regUtil::getCurrentUser(user));
    EXPECT_EQ(user, stored);
    EXPECT_EQ(LogOf(L"regUtil::getCurrentUser"), std::vector<LogLine>{Debug(L"currentUser = " + stored)});
  }
}

}  // namespace
}  // namespace registrytest
