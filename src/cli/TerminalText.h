#pragma once

#include <QString>

#include <string>

namespace quillon::cli {

// Text bound for a terminal with its control characters (C0, DEL, C1) shown as "\x1b" and so
// on, so that a link or document name cannot clear the screen or retitle the window.
// `printable` escapes every one (for a value on one line); `printableLines` keeps line feeds and
// tabs (for text laid out in lines).
QString printable(const QString& text);
QString printableLines(const QString& text);

// The same as UTF-8, ready for a stream.
std::string printableText(const QString& text);
std::string printableLinesText(const QString& text);

// "quillon <command>: <about>: <message>" (without "<about>: " when it is empty) on standard error.
void printCommandError(const char* command, const QString& about, const QString& message);

} // namespace quillon::cli
