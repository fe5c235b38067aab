#include "core/nearly_equal.h"

#include <cmath>

namespace corvane::core {

bool IsNearlyEqual(double a, double b, double epsilon) noexcept {
  if (a != 0.0 && b != 0.0) return std::fabs(a - b) / std::fabs(b) <= epsilon;
  return std::fabs(a - b) <= epsilon;
}

}  // namespace corvane::core
