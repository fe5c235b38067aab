// The generic helpers, and what ReadRegistryValue and the readers make of data the client never
// writes: other registry types, odd byte counts, missing terminators, very large values.
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "client/registry.h"
#include "platform/handles.h"
#include "registry_fixture.h"

namespace registrytest {
namespace {

using regUtil::ReadRegistryValue;

const std::wstring kScratchKey = std::wstring(testsupport::kClientKey) + L"\\scratch";

// Everything written to the standard error stream while a call runs.
template <class F>
std::string StandardErrorOf(const std::wstring& file, F call) {
  FILE* sink = nullptr;
  if (_wfopen_s(&sink, file.c_str(), L"wb") != 0 || sink == nullptr) return "(no sink)";
  std::fflush(stderr);
  const int saved = _dup(_fileno(stderr));
  _dup2(_fileno(sink), _fileno(stderr));
  call();
  std::fflush(stderr);
  _dup2(saved, _fileno(stderr));
  _close(saved);
  std::fclose(sink);
  std::ifstream in(std::filesystem::path(file), std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

long LiveKeys() {
  return corvane::LiveCount<corvane::null_handle_traits<HKEY, corvane::detail::CloseKey>>::value().load();
}

TEST_F(RegistryTest, KeyAndValueExistence) {
  EXPECT_FALSE(regUtil::KeyExists(kScratchKey));
  EXPECT_FALSE(regUtil::ValueExists(kScratchKey, L"v"));
  SetText(kScratchKey, L"v", L"");
  const DWORD dword = 5;
  SetRaw(kScratchKey, L"d", REG_DWORD, &dword, sizeof(dword));
  SetRaw(kScratchKey, L"none", REG_NONE, nullptr, 0);
  EXPECT_TRUE(regUtil::KeyExists(kScratchKey));
  EXPECT_TRUE(regUtil::KeyExists(kRoot));
  EXPECT_TRUE(regUtil::ValueExists(kScratchKey, L"v"));
  EXPECT_TRUE(regUtil::ValueExists(kScratchKey, L"d"));
  EXPECT_TRUE(regUtil::ValueExists(kScratchKey, L"none"));
  EXPECT_FALSE(regUtil::ValueExists(kScratchKey, L"w"));
  EXPECT_FALSE(regUtil::ValueExists(kRoot, L"v"));
}

TEST_F(RegistryTest, ReadRegistryDwordTakesExactlyFourBytesOfAnyType) {
  const DWORD seven = 7;
  const unsigned long long wide = 9;
  const unsigned char two[2] = {1, 2};
  SetRaw(kScratchKey, L"dword", REG_DWORD, &seven, 4);
  SetRaw(kScratchKey, L"binary4", REG_BINARY, "\x01\x02\x03\x04", 4);
  SetRaw(kScratchKey, L"qword", REG_QWORD, &wide, 8);
  SetRaw(kScratchKey, L"short", REG_BINARY, two, 2);
  SetText(kScratchKey, L"text1", L"7");    // "7" and its null: four bytes, read as 0x37
  SetText(kScratchKey, L"text2", L"70");  // six bytes
  struct Case {
    const wchar_t* name;
    std::uint32_t expected;
  } const cases[] = {
      {L"dword", 7}, {L"binary4", 0x04030201u}, {L"qword", 0},   {L"short", 0},
      {L"text1", 0x37}, {L"text2", 0},           {L"missing", 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(regUtil::ReadRegistryDword(kScratchKey, c.name), c.expected) << std::wstring(c.name).size();
  }
}

TEST_F(RegistryTest, OpenFailuresArePrintedToStandardError) {
  const std::wstring sink = Scratch() + L"\\stderr.txt";
  std::wstring text = L"sentinel";
  std::uint32_t dword = 1;
  EXPECT_EQ(StandardErrorOf(sink, [&] { text = ReadRegistryValue(kScratchKey, L"v"); }),
            "Failed to open registry key.\n");
  EXPECT_EQ(text, L"");
  EXPECT_EQ(StandardErrorOf(sink, [&] { dword = regUtil::ReadRegistryDword(kScratchKey, L"v"); }),
            "Failed to open registry key.\n");
  EXPECT_EQ(dword, 0u);
  // A missing value in an existing key is not an open failure and prints nothing.
  SetText(kScratchKey, L"other", L"x");
  EXPECT_EQ(StandardErrorOf(sink, [&] { text = ReadRegistryValue(kScratchKey, L"v"); }), "");
  EXPECT_EQ(StandardErrorOf(sink, [&] { regUtil::WriteRegistryValue(kScratchKey + L"\\new", L"v", L"x"); }), "");
}

TEST_F(RegistryTest, WriteRegistryValueCreatesTheKeyAndWritesTerminatedText) {
  const std::wstring deep = kScratchKey + L"\\deep";
  regUtil::WriteRegistryValue(deep, L"name", L"first");
  regUtil::WriteRegistryValue(deep, L"name", L"second value");
  regUtil::WriteRegistryValue(deep, L"empty", L"");
  using Written = std::pair<const wchar_t*, std::wstring>;
  for (const auto& [name, text] : {Written{L"name", L"second value"}, Written{L"empty", L""}}) {
    DWORD type = 0, size = 0;
    ASSERT_EQ(::RegGetValueW(HKEY_CURRENT_USER, deep.c_str(), name, RRF_RT_ANY, &type, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(size, (text.size() + 1) * sizeof(wchar_t));
    EXPECT_EQ(ReadRegistryValue(deep, name), text);
  }
}

TEST_F(RegistryTest, ReadRegistryValueTakesAnyBytesAsText) {
  const DWORD digitOne = 0x31;  // bytes 31 00 00 00: the text "1"
  const DWORD one = 1;
  const wchar_t unterminated[] = L"abcdefghij";
  const unsigned char odd[] = {'1', 0, '2', 0, 'X'};    // five bytes: the last becomes a character
  const unsigned char oddZero[] = {'1', 0, '2', 0, 0};  // five bytes ending in zero
  const unsigned char leadingNull[] = {0, 0, 'a', 0, 'b', 0, 0, 0};
  SetRaw(kScratchKey, L"dwordDigit", REG_DWORD, &digitOne, 4);
  SetRaw(kScratchKey, L"dwordOne", REG_DWORD, &one, 4);
  SetRaw(kScratchKey, L"unterminated", REG_SZ, unterminated, 20);
  SetRaw(kScratchKey, L"odd", REG_BINARY, odd, sizeof(odd));
  SetRaw(kScratchKey, L"oddZero", REG_BINARY, oddZero, sizeof(oddZero));
  SetRaw(kScratchKey, L"leadingNull", REG_SZ, leadingNull, sizeof(leadingNull));
  SetRaw(kScratchKey, L"emptyNone", REG_NONE, nullptr, 0);
  SetRaw(kScratchKey, L"multi", REG_MULTI_SZ, L"ab\0cd\0", 14);
  struct Case {
    const wchar_t* name;
    std::wstring expected;
    bool oddLine;
  } const cases[] = {
      {L"dwordDigit", L"1", false},
      {L"dwordOne", L"\x0001", false},
      {L"unterminated", L"abcdefghij", false},
      {L"odd", L"12X", true},
      {L"oddZero", L"12", false},
      {L"leadingNull", L"", false},
      {L"emptyNone", L"", false},
      {L"multi", L"ab", false},
      {L"missing", L"", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "value name length " << std::wstring(c.name).size() << ", expected length "
                                    << c.expected.size());
    ClearLog();
    EXPECT_EQ(ReadRegistryValue(kScratchKey, c.name), c.expected);
    std::vector<LogLine> expected;
    if (c.oddLine) expected.push_back(Debug(L"RegQueryValue after value = 12X,5,2"));
    EXPECT_EQ(LogOf(L"ReadRegistryValue"), expected);
  }
}

TEST_F(RegistryTest, ReadersSurviveValuesOfOtherTypesAndShapes) {
  SetUser(kUser);
  const DWORD digitOne = 0x31;
  // bLogin as REG_DWORD 0x31 reads as the text "1": the readers take any type, like ReadRegistryValue.
  SetRaw(kUserKey, L"bLogin", REG_DWORD, &digitOne, 4);
  EXPECT_TRUE(regUtil::checkReadyLogin());

  // currentUser without its terminator still names the per-user key.
  SetRaw(kRoot, L"currentUser", REG_SZ, kUser.c_str(), static_cast<DWORD>(kUser.size() * sizeof(wchar_t)));
  SetRaw(kUserKey, L"bLogin", REG_BINARY, L"1", 2);
  EXPECT_TRUE(regUtil::checkReadyLogin());

  // Zoom as a binary value with an odd length: "1.5" plus a stray byte '7' reads as "1.57".
  const unsigned char zoomBytes[] = {'1', 0, '.', 0, '5', 0, '7'};
  SetRaw(kZoomKey, L"42", REG_BINARY, zoomBytes, sizeof(zoomBytes));
  double zoom = 0.0;
  EXPECT_TRUE(regUtil::getDpiZoom(42, zoom));
  EXPECT_DOUBLE_EQ(zoom, 1.57);
}

TEST_F(RegistryTest, OneMebibyteValuesAreReadWhole) {
  SetUser(kUser);
  std::wstring title(512 * 1024 - 1, L'A');  // with its null: exactly 1 MiB
  title[1000] = L'7';
  SetUserValue(L"advertisingId", L"a1");
  SetUserValue(L"advertisingTitle", title);
  std::wstring id, read;
  EXPECT_TRUE(regUtil::getAdvertisingInfo(id, read));
  EXPECT_EQ(read, title);
  EXPECT_EQ(ReadRegistryValue(kUserKey, L"advertisingTitle").size(), title.size());
}

TEST_F(RegistryTest, ReadersKeepNoKeyOpen) {
  SetUser(kUser);
  SetUserValue(L"bLogin", L"1");
  SetUserValue(L"bOpenSync", L"1");
  SetUserValue(L"syncPath", MakeFolder(L"Sync"));
  SetText(kZoomKey, L"5", L"1.25");
  const long before = LiveKeys();
  std::wstring text;
  std::uint64_t a = 0, b = 0;
  double zoom = 0;
  EXPECT_TRUE(regUtil::checkReadyLoginAndOpenSync(text));
  EXPECT_TRUE(regUtil::getCurrentUser(text));
  EXPECT_FALSE(regUtil::getCloudSpace(a, b));
  EXPECT_FALSE(regUtil::getLogoPath(text));
  EXPECT_TRUE(regUtil::getDpiZoom(5, zoom));
  EXPECT_FALSE(regUtil::getDpiZoom(6, zoom));
  EXPECT_EQ(ReadRegistryValue(kUserKey, L"bLogin"), L"1");
  EXPECT_EQ(ReadRegistryValue(kUserKey + L"\\none", L"bLogin"), L"");
  EXPECT_EQ(LiveKeys(), before);
}

}  // namespace
}  // namespace registrytest
