#pragma once

#include <QString>

#include <memory>

namespace quillon::idml {
class IdmlDocument;
} // namespace quillon::idml

namespace quillon::preflight {

// A document exported as IDML for one preflight and made ready to be read.
struct UnpackedDocument {
    QString idmlPath; // the exported ".idml" in the work folder
    // Read from a copy the zip tool repaired, because the archive could not be read as it was.
    bool repaired = false;
    // The package's parts, read from the archive in memory and parsed once for every stage.
    std::shared_ptr<const idml::IdmlDocument> parts;
};

// The step of the export and unpacking that failed: it decides the alert the user sees.
enum class UnpackStep {
    Export, // the host could not export the document
    Repair, // the archive could not be opened, even after a repair
    Unpack, // the archive is not a whole IDML package or could not be unpacked
};

} // namespace quillon::preflight
