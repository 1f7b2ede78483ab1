#pragma once

#include "results/ResultRows.h"

#include <QPoint>
#include <QStringList>

class QTreeView;

namespace quillon::app {
class AlertSink;
}
namespace quillon::host {
class InDesignHost;
}

namespace quillon::ui {

class FontsModel;
class LinksModel;
class ResultModel;

// The rows of an outline as its user sees them (expanded children in their place), the selected
// ones, and the row under `clickPoint` (a viewport position; none when it is null).
results::OutlineSelection outlineSelection(const QTreeView& view, const ResultModel& model, QPoint clickPoint);

// Shows the files in the desktop's file manager (selecting them where it can), or else opens the
// folder of the first.
void revealInFileManager(const QStringList& paths);

// "Reveal in Finder..." says "File Manager" where there is no Finder.
QString platformRevealTitle(QString title);

// What the context menus of the lists can reach.
struct ResultMenuServices {
    host::InDesignHost& host;
    app::AlertSink& alerts;
    bool offline = true; // no InDesign: "Go to Link" is disabled with the reason
};

// The context menus of the links list (reveal, open with, go to the link, rename) and the fonts
// list (reveal).
void installResultMenus(QTreeView& linksView, LinksModel& links, QTreeView& fontsView, FontsModel& fonts,
                        const ResultMenuServices& services);

} // namespace quillon::ui
