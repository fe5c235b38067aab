#pragma once
// The capacity display's rules: how a byte count is written, when free space counts as nearly
// exhausted, and the used share that the progress bar shows.
#include <cstdint>
#include <string>

namespace corvane::core {

// Bytes in the largest power-of-1024 unit that keeps the number at least 1: "512B", "1.5KB",
// "1.25GB", "1TB". Fractions are written with two decimals and then stripped of trailing zeros and
// of a bare point, so 1023.999 KiB, which rounds to 1024.00, reads "1024KB".
std::wstring FormatSize(std::uint64_t bytes);

// Warn when 500 MiB or less is free, counted in whole MiB, or when used reaches total. The
// subtraction wraps for used above total; the second test catches that case.
bool IsCapacityWarning(std::uint64_t total, std::uint64_t used) noexcept;

// trunc(used / total * 100) in double, bounded to the int range (the progress control clamps it to
// its own range); 0 for a total of 0.
int UsedPercent(std::uint64_t total, std::uint64_t used) noexcept;

}  // namespace corvane::core
