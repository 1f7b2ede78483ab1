#pragma once

#include "app/Result.h"

#include <QList>

namespace quillon::inspection {

// The parts of an IDML package that an inspection had to skip: each an Error whose file is the
// part's name inside the package and whose message says why, so that its text reads
// "Stories/Story_u1a.xml: not readable XML at byte 14". The rest of the document is still
// inspected; the warnings tell the user that the result is incomplete.
using PartWarnings = QList<app::Error>;

// What an inspection found, with the parts it skipped.
template <typename T> struct Inspected {
    T found;
    PartWarnings skipped;
};

} // namespace quillon::inspection
