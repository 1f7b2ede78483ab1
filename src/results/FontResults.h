#pragma once

#include "results/ResultRows.h"

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace quillon::results {

// The font results: the fonts of the preflighted document (or one group per document of a batch)
// judged by the font rules of the current checkup preset. The fonts outline of the desktop
// application shows `items()`; everything it decides beyond drawing is here.
class QNFontsOutlineController : public ResultList {
public:
    QNFontsOutlineController() : ResultList(QStringLiteral("FONTS")) {}
    // Empties the rows.
    void startup() { clear(); }

    // Loads the rows from the font data file's dictionary and judges them with `preset` (the
    // current preset's dictionary; empty when it could not be found, which leaves the records
    // without icons or alerts).
    void setItems(const QVariantMap& dataFile, const QVariantMap& preset);

    // Judges the rows of the last data file again with another preset (the user chose one).
    void reapplyPreset(const QVariantMap& preset);
    void clear()
    {
        ResultList::clear();
        m_dataFile.clear();
    }

    // The rule pass: a copy of every record with "typeIcon", "statusIcon", "alert", "alertName"
    // and "alerts" added, and the name of a font that is not installed cleaned. Pure.
    static QVariantList applyCurrPresetToArray(QVariantList records, const QVariantMap& preset);

    // A missing font's name with its doubled style made single ("Minion Pro RegularRegular"
    // gives "Minion Pro Regular"); see the .cpp for the order of the tests.
    static QString cleanMissingFontName(const QString& name);

    // The alert texts that `conditions` (rules of one attribute) raise on the record's `attribute`
    // key, named with `attrUIStr` in the texts.
    static QStringList alertsForItem(const QVariantMap& item, const QString& attribute, const QString& attrUIStr,
                                     const QVariantList& conditions);

    static QString iconForFontType(const QString& type);
    // "" when the status has no image.
    static QString iconForFontStatus(const QString& status);

    // The records a context-menu command acts on: the right-clicked row alone when it lies outside
    // the selection, else the selected rows in row order; rows whose "path" is "?" or empty are
    // left out.
    static QVariantList itemsForAction(const OutlineSelection& selection);

    // The first item of the context menu for those rows.
    struct RevealMenuItem {
        QString title;
        bool enabled = false;
    };
    static RevealMenuItem revealMenuItem(const QVariantList& rowsToActOn);

    // The paths "Reveal in Finder..." selects; empty means there is nothing to reveal (beep).
    static QStringList pathsToReveal(const QVariantList& rowsToActOn);

private:
    QVariantMap m_dataFile;
};

} // namespace quillon::results
