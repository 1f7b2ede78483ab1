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

// A copy of the bundled sample document in `folder` with its "Links" folder, the links bearing
// the time the document recorded for them (a checkout keeps no file times, so the originals read
// "Modified"). Gives the document's path.
QString copyBundledSample(const QString& folder);

} // namespace quillon::test
