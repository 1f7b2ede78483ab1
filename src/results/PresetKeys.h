#pragma once

#include <QString>

namespace quillon::results {

// The checkup preset file: a property-list dictionary named after the preset with the extension
// "qnfp", read by other copies of the program, so every key keeps its spelling.

inline const QString kPresetExtension = QStringLiteral("qnfp");
inline const QString kDefaultPresetName = QStringLiteral("[Default]");
inline const QString kPresetsFolderName = QStringLiteral("Presets");

inline const QString kPresetNameKey = QStringLiteral("name");         // text: the file name without extension
inline const QString kPresetFontsKey = QStringLiteral("Fonts");       // dictionary
inline const QString kPresetLinksKey = QStringLiteral("Links");       // dictionary
inline const QString kPresetColorsKey = QStringLiteral("Colors");     // dictionary of integer states
inline const QString kPresetDocumentKey = QStringLiteral("Document"); // dictionary, empty; kept
inline const QString kPresetOptionsKey = QStringLiteral("Options");   // dictionary, empty; kept
// Read by the rename check only; presets carry no such entry.
inline const QString kPresetPresetsKey = QStringLiteral("presets");

// In "Fonts" and "Links".
inline const QString kConditionsKey = QStringLiteral("conditions"); // array of rules
// "Fonts": the font check reads "embed" while the presets window writes "embedBtn"; the two stay
// apart on purpose, so presets written here never raise the embedding alert.
inline const QString kFontsEmbedKey = QStringLiteral("embed");       // boolean, read only
inline const QString kFontsEmbedBtnKey = QStringLiteral("embedBtn"); // integer check-box state, written only

// "Links" thresholds.
inline const QString kSizeBelowFieldKey = QStringLiteral("sizeBelowField");      // text as typed; empty = off
inline const QString kSizeBelowBytesKey = QStringLiteral("sizeBelowBytes");      // unsigned 64-bit bytes
inline const QString kSizeBelowUnitsKey = QStringLiteral("sizeBelowUnitsPopup"); // "KB", "MB" or "GB"
inline const QString kSizeAboveFieldKey = QStringLiteral("sizeAboveField");
inline const QString kSizeAboveBytesKey = QStringLiteral("sizeAboveBytes");
inline const QString kSizeAboveUnitsKey = QStringLiteral("sizeAboveUnitsPopup");
inline const QString kResBelowFieldKey = QStringLiteral("resBelowField"); // text of a dpi field
inline const QString kResAboveFieldKey = QStringLiteral("resAboveField");
inline const QString kResBWBelowFieldKey = QStringLiteral("resBWBelowField"); // for "Black and White" images
inline const QString kResBWAboveFieldKey = QStringLiteral("resBWAboveField");
inline const QString kFontsEpsBtnKey = QStringLiteral("fontsEpsBtn");           // integer state
inline const QString kFontsEpsMtrxKey = QStringLiteral("fontsEpsMtrx");         // 0 any fonts, other = embedded only
inline const QString kScaledNonPropBtnKey = QStringLiteral("scaledNonPropBtn"); // integer state
inline const QString kNonPrintBtnKey = QStringLiteral("nonPrintBtn");           // integer state

inline const QString kUnitKB = QStringLiteral("KB");
inline const QString kUnitMB = QStringLiteral("MB");
inline const QString kUnitGB = QStringLiteral("GB");

// "Colors" check boxes.
inline const QString kColorsSpotKey = QStringLiteral("spot");
inline const QString kColorsProcessKey = QStringLiteral("process");
inline const QString kColorsRGBKey = QStringLiteral("RGB");
inline const QString kColorsCMYKKey = QStringLiteral("CMYK");
inline const QString kColorsLABKey = QStringLiteral("LAB");
inline const QString kColorsHSBKey = QStringLiteral("HSB");
inline const QString kColorsUnusedKey = QStringLiteral("unused");
inline const QString kColorsRegAppliedToTextKey = QStringLiteral("regAppliedToText");

// "Document" checks, each off while its key is absent (presets of other copies hold none). Lengths
// are points; "unit" only chooses how they are shown.
inline const QString kDocMinBleedKey = QStringLiteral("minBleed");                   // every bleed side at least
inline const QString kDocMinSlugKey = QStringLiteral("minSlug");                     // every slug side at least
inline const QString kDocPageWidthKey = QStringLiteral("pageWidth");                 // with "pageHeight": every page
inline const QString kDocPageHeightKey = QStringLiteral("pageHeight");               // has this size
inline const QString kDocPageSizeToleranceKey = QStringLiteral("pageSizeTolerance"); // allowed difference each way
inline const QString kDocMinPagesKey = QStringLiteral("minPages");                   // integer
inline const QString kDocMaxPagesKey = QStringLiteral("maxPages");                   // integer
inline const QString kDocSamePageSizeKey = QStringLiteral("samePageSize");           // integer state
inline const QString kDocUnitKey = QStringLiteral("unit");                           // "pt", "mm", "cm" or "in"

// A rule (font or link).
inline const QString kRuleAttributeKey = QStringLiteral("attribute");       // display name; decides what is tested
inline const QString kRuleAttributeKeyKey = QStringLiteral("attributeKey"); // record key; kept for other readers
inline const QString kRuleConditionKey = QStringLiteral("condition");
inline const QString kRuleValueKey = QStringLiteral("value");

inline const QString kConditionContains = QStringLiteral("contains");
inline const QString kConditionDoesntContain = QStringLiteral("doesn't contain");
inline const QString kConditionIs = QStringLiteral("is");

} // namespace quillon::results
