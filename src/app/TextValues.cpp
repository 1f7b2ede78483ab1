#include "app/TextValues.h"

#include <QChar>

#include <charconv>
#include <climits>
#include <string>

namespace quillon::app {

namespace {

qsizetype skipBlanks(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size() && text[i].isSpace())
        ++i;
    return i;
}

bool isDigit(QStringView text, qsizetype i)
{
    return i < text.size() && text[i] >= u'0' && text[i] <= u'9';
}

} // namespace

double doubleValue(QStringView text)
{
    qsizetype i = skipBlanks(text);
    std::string number;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
        number += char(text[i++].unicode());
    bool digits = false;
    while (isDigit(text, i)) {
        number += char(text[i++].unicode());
        digits = true;
    }
    if (i < text.size() && text[i] == u'.') {
        number += '.';
        ++i;
        while (isDigit(text, i)) {
            number += char(text[i++].unicode());
            digits = true;
        }
    }
    if (!digits)
        return 0.0;
    // An exponent counts only when digits follow it ("2e" is 2).
    if (i < text.size() && (text[i] == u'e' || text[i] == u'E')) {
        qsizetype j = i + 1;
        std::string exponent = "e";
        if (j < text.size() && (text[j] == u'+' || text[j] == u'-'))
            exponent += char(text[j++].unicode());
        if (isDigit(text, j)) {
            while (isDigit(text, j))
                exponent += char(text[j++].unicode());
            number += exponent;
        }
    }
    // from_chars, not strtod: the process locale may use a decimal comma.
    double value = 0.0;
    const char* begin = number.data();
    if (*begin == '+')
        ++begin;
    std::from_chars(begin, number.data() + number.size(), value);
    return value;
}

int intValue(QStringView text)
{
    qsizetype i = skipBlanks(text);
    bool negative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
        negative = text[i++] == u'-';
    long long value = 0;
    while (isDigit(text, i)) {
        value = value * 10 + (text[i++].unicode() - u'0');
        if (value > static_cast<long long>(INT_MAX) + 1)
            value = static_cast<long long>(INT_MAX) + 1;
    }
    if (negative)
        return value > INT_MAX ? INT_MIN : static_cast<int>(-value);
    return value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

} // namespace quillon::app
