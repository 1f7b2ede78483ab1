#pragma once

#include <QList>
#include <QMainWindow>
#include <QVariantMap>

class QTreeView;

namespace quillon::ui {

// The window operators live in: the result lists, the summary and the document's information,
// the progress bar and status line, the preflight button and the presets pop-up.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

    // Preflights the `.idml` document at `path` (a file given on the command line or dropped).
    void openDocument(const QString& path);
    // Where the selected link's metadata and information are shown, beside the lists.
    void setDetailPane(QWidget* pane);
    // The fonts, colours and links views, whose row size the Help menu's switch sets.
    QList<QTreeView*> resultViews() const;

Q_SIGNALS:
    // The link record selected in the links list (its "metadata" read once and kept), or an
    // empty record when no link (or a group row) is selected.
    void linkSelectionChanged(const QVariantMap& record);
};

} // namespace quillon::ui
