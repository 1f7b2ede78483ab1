#pragma once

#include "app/Result.h"

#include <QString>
#include <QStringList>

#include <pugixml.hpp>

#include <memory>

namespace quillon::preflight {

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

// A name without the "$ID/" prefix IDML gives InDesign's own names ("$ID/Regular" gives "Regular").
QString withoutIdPrefix(QString name);

} // namespace quillon::preflight
