#include "cli/TerminalText.h"

#include "app/RegularFile.h"

#include <algorithm>
#include <iostream>

namespace quillon::cli {

namespace {

bool isControl(char16_t c)
{
    return c < 0x20 || (c >= 0x7f && c <= 0x9f);
}

QString escaped(const QString& text, bool keepLayout)
{
    if (std::none_of(text.cbegin(), text.cend(), [](QChar c) { return isControl(c.unicode()); }))
        return text;
    QString shown;
    shown.reserve(text.size() + 8);
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        if (!isControl(code) || (keepLayout && (code == u'\n' || code == u'\t')))
            shown += c;
        else
            shown += QStringLiteral("\\x%1").arg(static_cast<int>(code), 2, 16, QLatin1Char('0'));
    }
    return shown;
}

} // namespace

// Stray bytes of a name that is not UTF-8 are shown as "\xNN" too, as in messages about files.
QString printable(const QString& text)
{
    return escaped(app::displayPath(text), false);
}

QString printableLines(const QString& text)
{
    return escaped(app::displayPath(text), true);
}

std::string printableText(const QString& text)
{
    return printable(text).toStdString();
}

std::string printableLinesText(const QString& text)
{
    return printableLines(text).toStdString();
}

void printCommandError(const char* command, const QString& about, const QString& message)
{
    std::cerr << "quillon " << command << ": "
              << printableText(about.isEmpty() ? message : about + QStringLiteral(": ") + message) << std::endl;
}

} // namespace quillon::cli
