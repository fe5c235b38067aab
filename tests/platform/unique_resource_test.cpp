// The RAII owners: each closes exactly once, put() frees before reuse, and moves transfer.
#include <gtest/gtest.h>

#include <tuple>
#include <utility>

#include "platform/handles.h"

namespace {

int g_closed = 0;
int g_lastClosed = 0;
void CloseFake(int* value) noexcept {
  ++g_closed;
  g_lastClosed = *value;
}
using fake_handle = corvane::unique_resource<corvane::null_handle_traits<int*, CloseFake>>;
long Live() { return corvane::LiveCount<corvane::null_handle_traits<int*, CloseFake>>::value().load(); }

}  // namespace

TEST(UniqueResource, ClosesOnceThroughResetMovePutAndRelease) {
  int a = 1, b = 2, c = 3;
  g_closed = 0;
  {
    fake_handle first(&a);
    EXPECT_EQ(std::make_pair(static_cast<bool>(first), Live()), std::make_pair(true, 1L));
    fake_handle second(std::move(first));
    EXPECT_EQ(std::make_tuple(static_cast<bool>(first), second.get(), g_closed), std::make_tuple(false, &a, 0))
        << "a move closes nothing";

    *second.put() = &b;  // put frees the old value before handing out the slot
    EXPECT_EQ(std::make_pair(g_closed, g_lastClosed), std::make_pair(1, 1));
    EXPECT_EQ(second.get(), &b);
    EXPECT_EQ(Live(), 1);

    second = fake_handle(&c);
    EXPECT_EQ(std::make_pair(g_closed, g_lastClosed), std::make_pair(2, 2));

    EXPECT_EQ(second.release(), &c);
    EXPECT_EQ(Live(), 0);
    EXPECT_FALSE(second);
  }
  EXPECT_EQ(std::make_pair(g_closed, Live()), std::make_pair(2, 0L)) << "a released value is the caller's";
}

TEST(UniqueResource, RealHandlesCloseAndCountBackToWhereTheyWere) {
  using traits = corvane::invalid_value_traits<corvane::detail::CloseKernelHandle>;
  const long before = corvane::LiveCount<traits>::value().load();
  {
    corvane::unique_file event(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    ASSERT_TRUE(event);
    corvane::unique_file moved = std::move(event);
    EXPECT_EQ(corvane::LiveCount<traits>::value().load(), before + 1);
  }
  EXPECT_EQ(corvane::LiveCount<traits>::value().load(), before);

  corvane::unique_hkey key;
  ASSERT_EQ(::RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, key.put()), ERROR_SUCCESS);
  EXPECT_TRUE(key);
  corvane::unique_hkey missing;
  EXPECT_NE(::RegOpenKeyExW(HKEY_CURRENT_USER, L"Software\\corvane-no-such-key", 0, KEY_READ, missing.put()),
            ERROR_SUCCESS);
  EXPECT_FALSE(missing);

  corvane::unique_file invalid(INVALID_HANDLE_VALUE);
  EXPECT_FALSE(invalid) << "INVALID_HANDLE_VALUE is no value for file-like handles";
}
