#pragma once

#include <QString>
#include <QStringView>

#include <string_view>

namespace quillon::idml {

// Attribute texts of the package are read as the document's own tools read them: a number is
// the longest numeric prefix after leading blanks (garbage and missing text read 0), and lists
// are split at single blanks, so two blanks in a row give an empty field.

// The `index`-th blank-separated field (0-based); empty when there are fewer fields.
std::string_view blankField(std::string_view text, int index);

// The number at the start of the text; 0 when there is none.
double leadingDouble(std::string_view text);

double leadingDouble(QStringView text);

// The integer at the start of the text, clamped to the int range; 0 when there is none.
int leadingInteger(std::string_view text);

// UTF-8 bytes of the package as a QString.
inline QString qstr(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace quillon::idml
