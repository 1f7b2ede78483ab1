#pragma once

#include <QByteArrayView>
#include <QString>

namespace quillon::fileinspect {

// The description of an ICC profile (its "desc" text, or the English entry of a version 4
// multi-language description), as colour-managed applications name the profile; the empty text
// when the bytes are not a readable profile. Thread-safe.
QString iccProfileDescription(QByteArrayView profile);

} // namespace quillon::fileinspect
