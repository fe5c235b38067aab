#pragma once
// Numbers as the client publishes them in registry text: decimal integers for flags and quotas,
// a decimal real for the zoom, and unsigned decimal digits for window handles used as value names.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::core {

// Base 10 after optional leading blanks and one sign; whatever follows the digits is ignored
// (" 1" and "1abc" both read as 1). 0 when no digit follows or the number does not fit the type,
// so a damaged value reads as "off" rather than as a clamped extreme.
std::int32_t ParseDecimalInt32(std::wstring_view text) noexcept;
std::int64_t ParseDecimalInt64(std::wstring_view text) noexcept;

// A real in the plain decimal/exponent form ("1.25", "-.5", "2E-1") after optional leading blanks;
// trailing text is ignored. Nothing when no digit starts the text, when the value overflows or
// underflows a double, and for "inf", "nan" or hexadecimal forms: a zoom must stay finite.
// The decimal point is always '.', whatever the thread's locale.
std::optional<double> ParseDecimalReal(std::wstring_view text);

// Doubles compared within epsilon: relative to |b| when both are non-zero, absolute otherwise (so a
// zero is never divided by, and 0 against 1e-10 is equal at epsilon 1e-9).
bool IsNearlyEqual(double a, double b, double epsilon) noexcept;

// The digits of an unsigned number, as window handles are written into value names.
std::wstring UnsignedDecimal(std::uint64_t value);

}  // namespace corvane::core
