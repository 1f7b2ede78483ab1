#pragma once

#include "inspection/PartWarnings.h"

#include <QString>

#include <pugixml.hpp>

#include <memory>

namespace quillon::app {
class CancelFlag;
}

namespace quillon::idml {
class IdmlDocument;
}

namespace quillon::inspection {

// Reads the parts of one package for one inspection. A part that cannot be read (missing, not a
// regular file, beyond the part bounds, not well-formed XML) is skipped with a warning naming
// it, so that the rest of the document is still inspected.
class PartReader {
public:
    explicit PartReader(const idml::IdmlDocument& document, const app::CancelFlag* cancel = nullptr)
        : m_document(document), m_cancel(cancel)
    {
    }

    const idml::IdmlDocument& document() const { return m_document; }
    const app::CancelFlag* cancelFlag() const { return m_cancel; }

    // The part parsed; null when `name` is empty (the package has no such part) or when the part
    // cannot be read, the latter with a warning.
    std::shared_ptr<const pugi::xml_document> read(const QString& name);

    // The inspection was asked to stop; it then reads no more parts.
    bool cancelled() const;

    const PartWarnings& warnings() const { return m_warnings; }

private:
    const idml::IdmlDocument& m_document;
    const app::CancelFlag* m_cancel;
    PartWarnings m_warnings;
};

// The error of an inspection that was cancelled.
app::Error inspectionCancelled();

// A name without the "$ID/" prefix IDML gives InDesign's own names ("$ID/Regular" gives "Regular").
QString withoutIdPrefix(QString name);

} // namespace quillon::inspection
