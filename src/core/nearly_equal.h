#pragma once

namespace corvane::core {

// Relative comparison when both numbers are non-zero, absolute otherwise (a zoom of 0 stored
// against a fresh 0 or 1e-10 counts as unchanged).
bool IsNearlyEqual(double a, double b, double epsilon) noexcept;

}  // namespace corvane::core
