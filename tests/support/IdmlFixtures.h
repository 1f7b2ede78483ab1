#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace quillon::test {

using ArchiveEntries = std::vector<std::pair<QString, QByteArray>>;

// Writes an IDML package: "mimetype" first, then the entries in order. Fails the test on error.
void writeIdml(const QString& path, const ArchiveEntries& entries);

// A designmap.xml listing the parts (idPkg:Spread for "Spreads/...", idPkg:Story for
// "Stories/...", idPkg:MasterSpread for "MasterSpreads/...", idPkg:Preferences otherwise).
QByteArray designmapXml(const QStringList& parts, const QString& domVersion = QStringLiteral("20.0"));

// A spread file whose pages have these GeometricBounds (an empty entry leaves the attribute out).
QByteArray spreadXml(const QStringList& pageBounds, const QByteArray& extraContent = {});

// A Resources/Preferences.xml with these ViewPreference and DocumentPreference attribute texts
// (a null text leaves that element out).
QByteArray preferencesXml(const QString& viewAttributes, const QString& documentAttributes);

// An IDML of one spread with one Letter page, with Points units.
ArchiveEntries minimalIdml();

} // namespace quillon::test

namespace quillon::idml {
class IdmlDocument;
}

namespace quillon::test {

// The package at `path`, an unpacked folder or an IDML file. Throws, failing the test with the
// reason, when it cannot be read.
std::shared_ptr<const idml::IdmlDocument> readPackage(const QString& path);

} // namespace quillon::test
