#pragma once

#include <QByteArray>
#include <QString>

namespace quillon::test {

// A file under the repository ("../shared/samples/..." or "resources/...").
QString repoPath(const QString& relative);

// The shared sample files, "../shared/samples/<relative>".
QString samplePath(const QString& relative);

QByteArray readAll(const QString& path);
void writeAll(const QString& path, const QByteArray& bytes);

} // namespace quillon::test
