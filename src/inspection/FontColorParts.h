#pragma once

#include "app/Result.h"
#include "inspection/PartWarnings.h"

#include <QString>
#include <QStringList>

#include <pugixml.hpp>

#include <memory>

namespace quillon::inspection {

// The parts of an unpacked IDML package that the font, colour and paragraph-style inspections
// read, as designmap.xml lists them (so in the document's own order). Paths are absolute.
struct IdmlParts {
    QString folder;
    std::shared_ptr<pugi::xml_document> designMap;
    QString graphic;     // Resources/Graphic.xml; empty when the package lists none
    QString fonts;       // Resources/Fonts.xml; likewise
    QString styles;      // Resources/Styles.xml; likewise
    QString preferences; // Resources/Preferences.xml; likewise
    QStringList masterSpreads;
    QStringList spreads;
    QStringList stories;
};

// Reads designmap.xml of an unpacked package. Fails, naming the file, when the folder or its
// designmap.xml is missing or broken, or when the map names a part outside the folder.
app::Result<IdmlParts> readIdmlParts(const QString& folder);

// Reads the parts of one package for one inspection. A part that cannot be read (missing, not a
// regular file, beyond the part bounds, not well-formed XML) is skipped with a warning naming
// it, so that the rest of the document is still inspected.
class PartReader {
public:
    explicit PartReader(const IdmlParts& parts) : m_folder(parts.folder) {}

    // The part parsed; null when `path` is empty (the package has no such part) or when the part
    // cannot be read, the latter with a warning.
    std::shared_ptr<pugi::xml_document> read(const QString& path);

    const PartWarnings& warnings() const { return m_warnings; }

private:
    QString m_folder;
    PartWarnings m_warnings;
};

// A name without the "$ID/" prefix IDML gives InDesign's own names ("$ID/Regular" gives "Regular").
QString withoutIdPrefix(QString name);

} // namespace quillon::inspection
