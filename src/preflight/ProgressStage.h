#pragma once

#include <QString>

namespace quillon::preflight {

// The stages a preflight's progress shows, in the order they come.
enum class ProgressStage { Doc, Links, Fonts, Colors, End, Stop };

// "doc", "links", "fonts", "colors", "end", "stop".
QString stageName(ProgressStage stage);

} // namespace quillon::preflight
