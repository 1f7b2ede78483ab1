#pragma once

#include "app/Result.h"
#include "inspection/PartInspection.h"

#include <QString>
#include <QVariantList>

#include <memory>

namespace quillon::app {
class CancelFlag;
}

namespace quillon::inspection {

class FontFileFinder;

// The fonts a document really uses, read from its IDML package: the fonts of its text runs and of
// the paragraph and character styles they apply (with the nested, GREP, line, bullet and numbering
// character styles and bullet fonts of those paragraph styles), following BasedOn chains down to
// the document's default font. Composite fonts stand for the fonts they combine. Faces that
// Resources/Fonts.xml lists but no text uses are left out.
//
// One font record per font (keys in FontRecordKeys.h), sorted by name. The status is judged on
// this machine with `finder`: a font whose file is found is "installed" ("fauxed" or "substituted"
// when the IDML says so), any other "missing". A part that cannot be read is skipped with a
// warning; only a cancelled inspection fails.
app::Result<Inspected<QVariantList>> fontRecordsFromIdml(const idml::IdmlDocument& document, FontFileFinder& finder,
                                                         const app::CancelFlag* cancel = nullptr);

// The same inspection as a reader of the stories in a pass over the parts (the styles, the
// preferences and the fonts part are read when it is made).
class FontsFromParts final : public PartInspection<QVariantList> {
public:
    FontsFromParts(const idml::IdmlDocument& document, std::shared_ptr<FontFileFinder> finder,
                   const app::CancelFlag* cancel = nullptr);
    ~FontsFromParts() override;
    QStringList partNames(const idml::IdmlDocument& document) const override;
    void visit(const QString& name, const app::Result<std::shared_ptr<const idml::XmlPart>>& part) override;
    app::Result<Inspected<QVariantList>> finish() override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// The IDML's FontType in the words of the font record: "OpenTypeCFF" gives "OpenType CFF" (every
// OpenType flavour keeps "OpenType"), "Type1" "type 1", "Bitmap" "bitmap", others as they are.
QString fontTypeFromIdml(const QString& fontType);

} // namespace quillon::inspection
