#pragma once

#include <QString>

namespace quillon::test {

// Unpacks an IDML archive into `folder` (made when missing). Empty on success, else the reason.
QString unpackIdml(const QString& idmlPath, const QString& folder);

} // namespace quillon::test
