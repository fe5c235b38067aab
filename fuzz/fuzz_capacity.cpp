// The capacity display's rules: a formatted size reads back as the byte count within the rounding
// of its two decimals and in the right unit; the warning and the used share against exact
// 128-bit arithmetic.
#include <fuzzer/FuzzedDataProvider.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "core/capacity.h"
#include "fuzz_support.h"

namespace {

using namespace corvane::core;
using corvane::fuzz::Narrow;

__extension__ typedef unsigned __int128 Wide;

void CheckFormat(std::uint64_t bytes) {
  const std::wstring text = FormatSize(bytes);
  if (bytes < 1024) {
    FUZZ_CHECK(text == std::to_wstring(bytes) + L"B");
    return;
  }
  struct Unit {
    const wchar_t* name;
    std::uint64_t size;
  };
  const Unit unit = bytes < (1ull << 20)   ? Unit{L"KB", 1ull << 10}
                    : bytes < (1ull << 30) ? Unit{L"MB", 1ull << 20}
                    : bytes < (1ull << 40) ? Unit{L"GB", 1ull << 30}
                                           : Unit{L"TB", 1ull << 40};
  FUZZ_CHECK(text.size() > 2 && text.ends_with(unit.name));
  const std::string number = Narrow(text.substr(0, text.size() - 2));

  // Digits, then at most two decimals with no trailing zero and no bare point.
  const auto point = number.find('.');
  const std::string whole = number.substr(0, point);
  FUZZ_CHECK(!whole.empty() && whole.find_first_not_of("0123456789") == std::string::npos);
  FUZZ_CHECK(whole.size() == 1 || whole[0] != '0');
  if (point != std::string::npos) {
    const std::string fraction = number.substr(point + 1);
    FUZZ_CHECK(!fraction.empty() && fraction.size() <= 2);
    FUZZ_CHECK(fraction.find_first_not_of("0123456789") == std::string::npos);
    FUZZ_CHECK(fraction.back() != '0');
  }

  // Read back, it is the byte count to within half a hundredth of the unit (and a hair more for
  // the division in double).
  double value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  FUZZ_CHECK(error == std::errc() && end == number.data() + number.size());
  const double exact = static_cast<double>(bytes) / static_cast<double>(unit.size);
  FUZZ_CHECK(std::fabs(value - exact) <= 0.005 + exact * 1e-15);
  // The largest unit that keeps the number at least 1; below the next unit it may only round up
  // to 1024 itself.
  FUZZ_CHECK(value >= 1.0);
  if (unit.size < (1ull << 40)) FUZZ_CHECK(value <= 1024.0);
}

void CheckWarningAndShare(std::uint64_t total, std::uint64_t used) {
  const bool expectedWarning = used >= total || total - used < 501ull * (1ull << 20);
  FUZZ_CHECK(IsCapacityWarning(total, used) == expectedWarning);

  const int percent = UsedPercent(total, used);
  if (total == 0) {
    FUZZ_CHECK(percent == 0);
    return;
  }
  FUZZ_CHECK(percent >= 0);
  // The double division may land one off the exact floor, never more.
  const Wide exact = Wide(used) * 100u / total;
  const Wide bounded = exact > Wide(std::numeric_limits<int>::max()) ? Wide(std::numeric_limits<int>::max()) : exact;
  const Wide got = static_cast<Wide>(percent);
  FUZZ_CHECK(got + 1 >= bounded && got <= bounded + 1);
  if (used <= total) FUZZ_CHECK(percent <= 100);
  if (used == total) FUZZ_CHECK(percent == 100);
  if (used == 0) FUZZ_CHECK(percent == 0);
}

// Shifted right by a chosen amount, so small counts and every unit's range turn up often.
std::uint64_t Count(FuzzedDataProvider& input) {
  const auto shift = input.ConsumeIntegralInRange<unsigned>(0, 63);
  return input.ConsumeIntegral<std::uint64_t>() >> shift;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const std::uint64_t a = Count(input);
  const std::uint64_t b = Count(input);
  CheckFormat(a);
  CheckFormat(b);
  // Near the unit boundaries, where rounding to 1024 happens.
  CheckFormat(a | 0x3FF);
  CheckWarningAndShare(a, b);
  CheckWarningAndShare(b, a);
  return 0;
}
