#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

namespace quillon::fileinspect {

// Bounds on what the readers take from a file, so that a hostile or broken file costs bounded
// memory. Real files stay far below them.

// One name (a font, a colour, an ink) taken from a file; longer ones are cut.
inline constexpr qint64 kMaxValueBytes = 4 * 1024;
// Names collected from one file; the rest are not read.
inline constexpr qsizetype kMaxValueCount = 10000;
// An embedded ICC profile; larger ones are not read (real profiles stay under a few megabytes).
inline constexpr qint64 kMaxProfileBytes = 32 * 1024 * 1024;

// Names found in a file, in order, up to kMaxValueCount; with `unique` each is kept once.
class NameCollector {
public:
    explicit NameCollector(bool unique) : m_unique(unique) {}

    bool full() const { return m_names.size() >= kMaxValueCount; }
    void add(const QString& name)
    {
        if (full() || (m_unique && m_seen.contains(name)))
            return;
        if (m_unique)
            m_seen.insert(name);
        m_names.append(name);
    }
    const QStringList& names() const { return m_names; }

private:
    bool m_unique;
    QStringList m_names;
    QSet<QString> m_seen;
};

} // namespace quillon::fileinspect
