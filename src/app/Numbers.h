#pragma once

#include <QString>

#include <cstdint>

namespace quillon::app {

// The "###0", "###0.#", "###0.##" and "###0.####" patterns: at most `maxDecimals` decimals,
// trailing zeros dropped, no grouping, "." as separator. Rounds half to even on the shortest
// decimal form of the number, so 2.675 gives "2.68" and 2.665 gives "2.66" with two decimals.
QString formatDecimal(double value, int maxDecimals);

inline QString formatNoDecimal(double v)
{
    return formatDecimal(v, 0);
}
inline QString formatOneDecimal(double v)
{
    return formatDecimal(v, 1);
}
inline QString formatTwoDecimals(double v)
{
    return formatDecimal(v, 2);
}
inline QString formatFourDecimals(double v)
{
    return formatDecimal(v, 4);
}

// A file size as file managers show it, in decimal units: "Zero KB", "1 byte", "999 bytes",
// whole KB below a megabyte, one decimal in MB, two in GB and above, trailing zeros dropped.
QString fileSizeStrFromBytes(std::uint64_t bytes);

// A decimal number of exactly `digits` digits with no leading zero (a single digit may be 0).
// `digits` is clamped to 1...18.
QString randomNumberOfLength(int digits);

} // namespace quillon::app
