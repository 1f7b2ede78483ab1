#pragma once

#include "app/Result.h"
#include "inspection/ColorInspection.h"
#include "inspection/PartInspection.h"

#include <QString>

#include <memory>

namespace quillon::app {
class CancelFlag;
}

namespace quillon::inspection {

// The swatches of a document, read from its IDML package (Resources/Graphic.xml), in the
// Swatches panel's order: None, Paper and Registration included, known by their ColorOverride (or,
// for None, by being the plain swatch), not by name. Colours that the panel does not show (the
// reserved process inks, unnamed local colours) are left out.
//
// A swatch is used when anything in the document refers to it: page items on spreads and master
// spreads, text ranges, the styles those apply (with the styles those are based on or apply in
// turn), and tints, gradients and mixed inks built on it. InDesign's own swatches (None, Paper,
// Black, Registration) cannot be removed and are never reported unused.
//
// With `registrationInTextFlag` "1" the text ranges whose fill or stroke, as set on the range or
// by its styles, is the Registration swatch or a tint of it are counted.
//
// A part that cannot be read is skipped with a warning; only a cancelled inspection fails.
app::Result<Inspected<ColorInspection>> colorInspectionFromIdml(const idml::IdmlDocument& document,
                                                                const QString& registrationInTextFlag,
                                                                const app::CancelFlag* cancel = nullptr);

// The same inspection as a reader of the spreads, master spreads and stories in a pass over the
// parts (the swatches, styles and preferences are read when it is made).
class ColorsFromParts final : public PartInspection<ColorInspection> {
public:
    ColorsFromParts(const idml::IdmlDocument& document, const QString& registrationInTextFlag,
                    const app::CancelFlag* cancel = nullptr);
    ~ColorsFromParts() override;
    QStringList partNames(const idml::IdmlDocument& document) const override;
    void visit(const QString& name, const app::Result<std::shared_ptr<const idml::XmlPart>>& part) override;
    app::Result<Inspected<ColorInspection>> finish() override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace quillon::inspection
