#include "cli/ProgressLine.h"

#include <cstdio>
#include <unistd.h>

namespace quillon::cli {

namespace {

constexpr qint64 kRedrawIntervalMs = 80; // enough to read, not enough to flicker
constexpr qsizetype kMaxWidth = 100;

} // namespace

bool standardErrorIsTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

ProgressLine::ProgressLine(int documents, bool enabled) : m_documents(documents), m_enabled(enabled) {}

void ProgressLine::status(const QString& documentName, const QString& text)
{
    if (!m_enabled)
        return;
    std::lock_guard lock(m_mutex);
    m_text = documentName + QStringLiteral(": ") + text;
    draw(false);
}

void ProgressLine::documentDone()
{
    if (!m_enabled)
        return;
    std::lock_guard lock(m_mutex);
    ++m_done;
    m_text.clear();
    draw(true);
}

void ProgressLine::clear()
{
    if (!m_enabled)
        return;
    std::lock_guard lock(m_mutex);
    if (m_shown)
        std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    m_shown = false;
}

void ProgressLine::redraw()
{
    if (!m_enabled)
        return;
    std::lock_guard lock(m_mutex);
    draw(true);
}

void ProgressLine::draw(bool force)
{
    if (!force && m_sinceDrawn.isValid() && m_sinceDrawn.elapsed() < kRedrawIntervalMs)
        return;
    if (m_done >= m_documents) {
        if (m_shown)
            std::fputs("\r\033[K", stderr);
        m_shown = false;
        std::fflush(stderr);
        return;
    }
    QString line = QStringLiteral("[%1/%2 done] %3").arg(m_done).arg(m_documents).arg(m_text);
    if (line.size() > kMaxWidth)
        line = line.left(kMaxWidth - 1) + QChar(0x2026);
    std::fprintf(stderr, "\r\033[K%s", line.toLocal8Bit().constData());
    std::fflush(stderr);
    m_shown = true;
    m_sinceDrawn.start();
}

} // namespace quillon::cli
