#pragma once

#include "results/ResultRows.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace quillon::results {

// The colour results: the swatches of the preflighted document (or one group per document),
// prepared for display and judged by the colour check boxes of the current checkup preset.
class QNColorsOutlineController : public ResultList {
public:
    QNColorsOutlineController() : ResultList(QStringLiteral("COLORS")) {}
    void startup();

    // Loads the rows from the colour data file's dictionary: each document's records are prepared
    // (with its unused names and Registration count) and judged with the preset.
    void setItems(const QVariantMap& dataFile, const QVariantMap& preset);

    // Judges the rows of the last data file again with another preset (the user chose one).
    void reapplyPreset(const QVariantMap& preset);
    void clear()
    {
        ResultList::clear();
        m_dataFile.clear();
    }

    // Keeps the preset's "Colors" as `presetDict()` and judges the records with it.
    QVariantList applyCurrPresetToArray(const QVariantList& records, const QVariantMap& preset);
    const QVariantMap& presetDict() const { return m_presetDict; }

    // "1" or "0": "regAppliedToText" of the current "Colors", offered to the colour inspection.
    QString registrationInTextFlag() const;

    // The rule pass proper, pure: every record gets "alert" = "blank", "alertName" and a new
    // "alerts" holding only what the checks raise. The new dictionary replaces whatever the
    // preparation put there, the Registration-in-text alert included; that is intended.
    static QVariantList judgeColors(const QVariantList& records, const QVariantMap& colorRules);

    // Preparation of one document's records (all steps below, in order).
    static QVariantList prepareColorsArr(const QVariantList& records, const QVariantMap& documentDict);
    // "value" as text, "colValuesList" normalised to 0...1, "alerts" emptied.
    static void prepareColorValuesAndInsertAlertsDict(QVariantList& records);
    // Removes "None"; clears model and space of "Paper"; gives "Registration" the space
    // "registration" and an empty "value".
    static void processNonePaperRegistration(QVariantList& records);
    // Each value with "###0.#", joined by two blanks.
    static QString stringFromColorValues(const QVariantList& values);
    // CMYK / 100, RGB / 255, HSB hue / 359 and the rest / 100; any other space gives nothing.
    static QVariantList normalizedValuesFromColorValues(const QVariantList& values, const QString& colorSpace);

    // Image names for the model and space columns ("blank" for anything else).
    static QString imageForSpotValue(const QString& model);
    static QString imageForColorSpace(const QString& space);

    // How the swatch sample of a row is drawn, from its space and normalised values.
    struct SwatchSample {
        enum class Kind { Hidden, DeviceCMYK, DeviceRGB, HSB, White };
        Kind kind = Kind::Hidden;
        QList<double> components; // 4 for CMYK, 3 for RGB and HSB, each 0...1
    };
    static SwatchSample swatchSample(const QString& space, const QVariantList& normalizedValues);

private:
    QVariantMap m_dataFile;
    QVariantMap m_presetDict;
};

// List operations of the preparation.
// Every record whose non-empty name is among `names` gets "used" = "-" (nothing when `names` is empty).
void assignUnusedStatusUsingUnusedNames(QVariantList& records, const QStringList& names);
// When `count` is not 0, "Registration" gets the alert "<rule>: <count> cases" under "spot".
void setRegistrationIssueCount(QVariantList& records, qint64 count, const QString& rule);

// The application's own variant of registrationInTextFlag: it reads "regAppliedToText" from the
// top level of the preset, not from "Colors", and so answers "0" for presets written here. Kept so.
QString registrationInTextFlagOfPreset(const QVariantMap& preset);

// The colour check boxes of the presets window: their titles, keys and states.
class QNColorRules {
public:
    struct CheckBox {
        QString title;
        QString key;
    };
    // The eight check boxes in window order.
    static const QList<CheckBox>& keysForButtonTitles();

    void startup() { m_colorRulesDict.clear(); }
    void loadPresetData(const QVariantMap& colors) { m_colorRulesDict = colors; }
    // The state (1 on, 0 off) shown by the box with that title; absent keys are off.
    int stateForTitle(const QString& title) const;
    // Stores the clicked box's state under its key.
    void buttonActions(const QString& title, int state);
    const QVariantMap& colorRulesDict() const { return m_colorRulesDict; }

private:
    QVariantMap m_colorRulesDict;
};

} // namespace quillon::results
