#include "app/Numbers.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace quillon::app {

namespace {

// Rounds a plain decimal text ("123.4567") to `maxDecimals` decimals, half to even, and drops
// trailing zeros. Works on digits, so no binary rounding error creeps back in.
std::string roundDecimalText(std::string digits, int maxDecimals)
{
    std::string intPart = digits;
    std::string frac;
    if (const auto dot = digits.find('.'); dot != std::string::npos) {
        intPart = digits.substr(0, dot);
        frac = digits.substr(dot + 1);
    }
    if (static_cast<int>(frac.size()) > maxDecimals) {
        const std::string rest = frac.substr(static_cast<size_t>(maxDecimals));
        frac.resize(static_cast<size_t>(maxDecimals));
        const bool above = rest[0] > '5' || (rest[0] == '5' && rest.find_first_not_of('0', 1) != std::string::npos);
        const bool half = rest[0] == '5' && rest.find_first_not_of('0', 1) == std::string::npos;
        const char last = frac.empty() ? intPart.back() : frac.back();
        const bool lastOdd = (last - '0') % 2 == 1;
        if (above || (half && lastOdd)) {
            std::string all = intPart + frac;
            int i = static_cast<int>(all.size()) - 1;
            while (i >= 0 && all[static_cast<size_t>(i)] == '9')
                all[static_cast<size_t>(i--)] = '0';
            if (i < 0)
                all.insert(all.begin(), '1');
            else
                ++all[static_cast<size_t>(i)];
            intPart = all.substr(0, all.size() - frac.size());
            frac = all.substr(all.size() - frac.size());
        }
    }
    while (!frac.empty() && frac.back() == '0')
        frac.pop_back();
    return frac.empty() ? intPart : intPart + "." + frac;
}

} // namespace

QString formatDecimal(double value, int maxDecimals)
{
    if (std::isnan(value))
        return QStringLiteral("NaN");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-∞") : QStringLiteral("∞");
    if (maxDecimals < 0)
        maxDecimals = 0;
    std::array<char, 512> buffer{};
    const auto [end, ec] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value), std::chars_format::fixed);
    if (ec != std::errc())
        return QString::number(value, 'f', maxDecimals);
    const std::string rounded = roundDecimalText(std::string(buffer.data(), end), maxDecimals);
    const bool isZero = rounded.find_first_not_of("0.") == std::string::npos;
    const std::string sign = (value < 0 && !isZero) ? "-" : "";
    return QString::fromStdString(sign + rounded);
}

QString fileSizeStrFromBytes(std::uint64_t bytes)
{
    if (bytes == 0)
        return QStringLiteral("Zero KB");
    if (bytes == 1)
        return QStringLiteral("1 byte");
    if (bytes < 1000)
        return QStringLiteral("%1 bytes").arg(bytes);
    struct Unit {
        const char* name;
        int decimals;
    };
    static constexpr std::array<Unit, 5> units{{{"KB", 0}, {"MB", 1}, {"GB", 2}, {"TB", 2}, {"PB", 2}}};
    double amount = static_cast<double>(bytes) / 1000.0;
    size_t unit = 0;
    // Move up a unit when the rounded amount would read 1000 or more ("1 MB", not "1000 KB").
    while (unit + 1 < units.size()) {
        const QString text = formatDecimal(amount, units[unit].decimals);
        if (text.toDouble() < 1000.0)
            break;
        amount /= 1000.0;
        ++unit;
    }
    return formatDecimal(amount, units[unit].decimals) + u' ' + QLatin1String(units[unit].name);
}

QString randomNumberOfLength(int digits)
{
    digits = std::clamp(digits, 1, 18);
    std::uint64_t bound = 1;
    for (int i = 0; i < digits; ++i)
        bound *= 10;
    for (;;) {
        const QString text = QString::number(QRandomGenerator::global()->bounded(static_cast<quint64>(bound)));
        if (text.size() == digits)
            return text;
    }
}

} // namespace quillon::app
