#include "idml/TextFields.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cmath>

namespace quillon::idml {

namespace {

std::string_view skipBlanks(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t\r\n");
    return first == std::string_view::npos ? std::string_view{} : text.substr(first);
}

} // namespace

std::string_view blankField(std::string_view text, int index)
{
    size_t start = 0;
    for (int i = 0; i < index; ++i) {
        const auto blank = text.find(' ', start);
        if (blank == std::string_view::npos)
            return {};
        start = blank + 1;
    }
    const auto end = text.find(' ', start);
    return text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
}

double leadingDouble(std::string_view text)
{
    text = skipBlanks(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    double value = 0.0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    (void)end;
    if (ec == std::errc::result_out_of_range)
        return 0.0;
    return ec == std::errc() && std::isfinite(value) ? value : 0.0;
}

double leadingDouble(QStringView text)
{
    // A number is never longer than this; the rest of a longer text cannot change its prefix.
    std::array<char, 64> buffer{};
    const qsizetype length = std::min<qsizetype>(text.size(), static_cast<qsizetype>(buffer.size()));
    for (qsizetype i = 0; i < length; ++i) {
        const char16_t c = text[i].unicode();
        buffer[static_cast<size_t>(i)] = c < 128 ? static_cast<char>(c) : '\x7f';
    }
    return leadingDouble(std::string_view(buffer.data(), static_cast<size_t>(length)));
}

int leadingInteger(std::string_view text)
{
    text = skipBlanks(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    long long value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    (void)end;
    if (ec == std::errc::result_out_of_range)
        return text.front() == '-' ? INT_MIN : INT_MAX;
    if (ec != std::errc())
        return 0;
    return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

} // namespace quillon::idml
