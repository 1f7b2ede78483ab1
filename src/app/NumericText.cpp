#include "app/NumericText.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace quillon::app {

namespace {

qsizetype skipSpaces(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size() && text[i].isSpace())
        ++i;
    return i;
}

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace

int intValueOfText(QStringView text)
{
    qsizetype i = skipSpaces(text);
    bool negative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) {
        negative = text[i] == u'-';
        ++i;
    }
    std::int64_t value = 0;
    constexpr std::int64_t limit = std::int64_t(std::numeric_limits<int>::max()) + 1;
    for (; i < text.size() && isAsciiDigit(text[i]); ++i) {
        value = value * 10 + (text[i].unicode() - u'0');
        if (value > limit)
            value = limit;
    }
    if (negative)
        return static_cast<int>(-value);
    return static_cast<int>(std::min<std::int64_t>(value, std::numeric_limits<int>::max()));
}

namespace {

// The longest prefix shaped like a decimal number, ready for from_chars; empty when none.
std::string leadingNumber(QStringView text)
{
    qsizetype i = skipSpaces(text);
    std::string number;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) {
        if (text[i] == u'-')
            number += '-';
        ++i;
    }
    bool digits = false;
    for (; i < text.size() && isAsciiDigit(text[i]); ++i, digits = true)
        number += static_cast<char>(text[i].unicode());
    if (i < text.size() && text[i] == u'.') {
        number += '.';
        for (++i; i < text.size() && isAsciiDigit(text[i]); ++i, digits = true)
            number += static_cast<char>(text[i].unicode());
    }
    if (!digits)
        return {};
    // An exponent counts only when digits follow it ("2e" is 2).
    if (i < text.size() && (text[i] == u'e' || text[i] == u'E')) {
        qsizetype j = i + 1;
        std::string exponent = "e";
        if (j < text.size() && (text[j] == u'+' || text[j] == u'-'))
            exponent += static_cast<char>(text[j++].unicode());
        bool expDigits = false;
        for (; j < text.size() && isAsciiDigit(text[j]); ++j, expDigits = true)
            exponent += static_cast<char>(text[j].unicode());
        if (expDigits)
            number += exponent;
    }
    return number;
}

// from_chars, not strtod: the process locale may use a decimal comma.
template <typename Real> Real parseLeadingNumber(QStringView text)
{
    const std::string number = leadingNumber(text);
    if (number.empty())
        return Real(0);
    Real value = 0;
    const auto [ptr, ec] = std::from_chars(number.data(), number.data() + number.size(), value);
    (void)ptr;
    if (ec == std::errc::result_out_of_range) {
        const bool negative = number.front() == '-';
        if (number.find("e-") != std::string::npos)
            return negative ? -Real(0) : Real(0);
        return negative ? -std::numeric_limits<Real>::infinity() : std::numeric_limits<Real>::infinity();
    }
    return ec == std::errc() ? value : Real(0);
}

} // namespace

double doubleValueOfText(QStringView text)
{
    return parseLeadingNumber<double>(text);
}

float floatValueOfText(QStringView text)
{
    return parseLeadingNumber<float>(text);
}

int intValueOf(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return intValueOfText(value.toString());
    case QMetaType::Bool:
        return value.toBool() ? 1 : 0;
    case QMetaType::Double:
    case QMetaType::Float: {
        const double d = value.toDouble();
        if (std::isnan(d))
            return 0;
        if (d >= double(std::numeric_limits<int>::max()))
            return std::numeric_limits<int>::max();
        if (d <= double(std::numeric_limits<int>::min()))
            return std::numeric_limits<int>::min();
        return static_cast<int>(d);
    }
    case QMetaType::ULongLong:
    case QMetaType::ULong:
    case QMetaType::UInt:
        return static_cast<int>(static_cast<std::uint32_t>(value.toULongLong()));
    case QMetaType::LongLong:
    case QMetaType::Long:
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return static_cast<int>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value.toLongLong())));
    default:
        return 0;
    }
}

} // namespace quillon::app
