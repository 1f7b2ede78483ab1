#pragma once

#include "idml/XmlPart.h"

#include <QtGlobal>

#include <optional>
#include <string_view>
#include <vector>

namespace quillon::idml {

// Elements to count by name ("Page"), optionally only those whose first attribute of a name
// ("LinkResourceURI") starts with a prefix ("file:").
struct ElementQuery {
    std::string_view name;
    std::string_view attribute;
    std::string_view valuePrefix;
};

// Counts the elements of each query in a part's text without building its tree, which for a part
// that is only counted costs several times the scan. Gives nullopt when the text holds anything
// this scan does not read the way the parser would (comments, CDATA, declarations, processing
// instructions after the first line, another encoding, a NUL, an entity in a prefix compared, a
// tag out of place, more than `limits` allow): the caller then parses the part, so that what the
// parser refuses is never counted here.
std::optional<std::vector<qint64>> tallyElements(std::string_view text, const std::vector<ElementQuery>& queries,
                                                 const XmlPartLimits& limits = {});

} // namespace quillon::idml
