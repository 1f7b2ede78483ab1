#pragma once

#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace quillon::test {

// An IDML package unpacked with the system's `unzip -q` into a temporary folder that lives as long
// as the returned object. Null when unzip fails (the test then fails on its own assertion).
std::unique_ptr<QTemporaryDir> unpackForTest(const QString& idmlPath);

} // namespace quillon::test
