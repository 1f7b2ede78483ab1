#pragma once

#include "idml/IdmlDocument.h"
#include "inspection/PartWarnings.h"

namespace quillon::inspection {

// An inspection that reads its parts in a pass over the document it may share with other readers,
// then gives its answer: the pass first, finish() after it.
template <typename Found> class PartInspection : public idml::PartVisitor {
public:
    virtual app::Result<Inspected<Found>> finish() = 0;
};

} // namespace quillon::inspection
