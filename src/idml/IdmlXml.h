#pragma once

#include "app/Result.h"
#include "idml/XmlPath.h"

#include <QByteArray>
#include <QString>

#include <pugixml.hpp>

namespace quillon::idml {

// Parses one XML part of an IDML package; the error names the document and the part.
app::Status loadIdmlXml(pugi::xml_document& document, const QByteArray& bytes, const QString& documentPath,
                        const QString& partName, unsigned options = pugi::parse_default);

// Every element below a root in document order, without recursion.
using idml::forEachElement;

} // namespace quillon::idml
