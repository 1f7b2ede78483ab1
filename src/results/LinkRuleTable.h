#pragma once

#include "results/RuleRows.h"

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

namespace quillon::results {

// The link rule attributes and the link-rules editor of the presets window.

struct LinkAttribute {
    QString displayName; // stored in the rule's "attribute"
    QString recordKey;   // the link record key the rule tests
};

// The attributes in the order the rule pass tests them (and the attributes menu lists them).
const QList<LinkAttribute>& linkAttributes();
// The record key for a display name ("" for an unknown one).
QString linkAttributeKey(const QString& displayName);

// The link status a rule value stands for when it is stored as a number (the status pop-up's
// index): 0 "Missing", 1 "Modified", 2 "Embedded", anything else "Missing".
QString linkStatusForIndex(qint64 index);

class QNLinkRulesTable : public RuleRows {
public:
    // Appends {"Kind", "kind", "contains", ""}. (The minus button removes the selected row.)
    void plusBtn();

    // An edit of a cell. "value": typed text, or the status pop-up's index on a "Status" row,
    // stored as the status text. "attribute" and "condition": the chosen menu title; choosing an
    // attribute also sets "attributeKey", and choosing "Status" sets "is" "Missing".
    void setObjectValue(const QString& column, qsizetype row, const QVariant& value);

    // Whether the row's value is chosen from the status pop-up (a "Status" rule) or typed.
    static bool valueIsStatusMenu(const QVariantMap& rule);
    // The status pop-up index to show for a rule's value (a number as stored, or the title's index).
    static int statusMenuIndex(const QVariant& value);

    static QStringList attributeMenuTitles();
    static QStringList conditionMenuTitles();
    static QStringList statusMenuTitles();
};

} // namespace quillon::results
