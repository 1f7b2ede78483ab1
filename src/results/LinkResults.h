#pragma once

#include "results/ResultRows.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace quillon::results {

// The link results: every placed link of the preflighted document (or one group per document),
// judged by the link rules and thresholds of the current checkup preset.
class QNLinksOutline : public ResultList {
public:
    QNLinksOutline() : ResultList(QStringLiteral("LINKS")) {}
    void startup() { clear(); }

    // Loads the rows from the link data file's dictionary, judges them with `preset` and sorts
    // the top-level rows with the list's current sort descriptors. A data file handed over
    // (moved in) is judged without copying its records.
    void setItems(QVariantMap dataFile, const QVariantMap& preset, const QList<SortDescriptor>& sort = {});
    // Judges the rows shown again with `preset`, in place: the judged keys are replaced (removed
    // when the preset has no link rules); the order and everything else of a row stay.
    void reapplyPreset(const QVariantMap& preset);
    // The rows, for the rename (which changes "name" and "path" of the relinked rows).
    QVariantList& mutableItems() { return m_items; }

    // The rule pass: a copy of every record with "icon", "statusImg", "badfolder", "alerts",
    // "alert" and "alertName" added. Pure; see LinkResults.cpp for the order of the checks.
    // Records handed over (the list moved in and not shared) are reused rather than copied.
    static QVariantList applyCurrPresetToArray(QVariantList records, const QVariantMap& preset);

    // The alert texts that `conditions` raise on the record's `attribute` key. Unlike the font
    // rules, "is" means exact, case-sensitive equality here, and no diacritics are folded.
    static QStringList alertsForFile(const QVariantMap& record, const QString& attribute, const QString& attrUIStr,
                                     const QVariantList& conditions);

    // "blank" for a path that is "?" or empty, else the file's own icon.
    static QString iconForLink(QStringView path);
    // The image named by the status for the four known ones, else "blank".
    static QString statusImage(QStringView status);

    // The records a command acts on. "Missing" and "Embedded" links are left out unless `sender`
    // is "goToLink". A right-clicked row outside the selection is taken from the top-level rows
    // by its row number directly.
    static QVariantList itemsForAction(const OutlineSelection& selection, const QVariantList& topLevelItems,
                                       const QString& sender);
    // The top-level rows with that path and an "id"; nothing when none.
    static std::optional<QList<qsizetype>> indexesOfItemsWhosePathIs(const QVariantList& items, const QString& path);

    // No value, empty text, or text holding "-".
    static bool emptyOrDash(const QVariant& value);
    // The pull-down lines of an "epscols" or "epsfonts" cell ("\r"-separated list); empty when the
    // cell's value is empty or a dash.
    static QStringList epsPullDownItems(const QVariantMap& record, const QString& column);
    // Only the name of a row that is not an expanded group and whose file is there can be edited.
    static bool shouldEditName(const QVariantMap& row, const QString& column, bool isExpandedGroup);
    // The first argument of "Go to Link": the link's "id" and the document's file name; nothing
    // when there is no row to go to (beep).
    struct GoToLinkTarget {
        QString linkId;
        QString docName;
    };
    static std::optional<GoToLinkTarget> goToLinkTarget(const QVariantList& rowsToActOn);

    // On a row's first selection: sets "metadataWasAquired" and stores what `readMetadata` gives
    // for the file in "metadata" (empty when it gives nothing). Later selections keep both.
    static void acquireMetadata(QVariantMap& record,
                                const std::function<QVariantList(const QString& path)>& readMetadata);

    // The first item of the context menu: "Fetching..." while the applications that open the
    // first file are looked up, or "Selected items cannot be open" when there is no file.
    static QString openWithPlaceholder(const QVariantList& rowsToActOn);
};

} // namespace quillon::results
