#include "ui/LegendWindow.h"

#include "ui/Icons.h"

#include <QGridLayout>
#include <QLabel>

namespace quillon::ui {

namespace {

struct Entry {
    const char* image;
    const char* meaning;
};

struct Group {
    const char* title;
    std::initializer_list<Entry> entries;
};

const Group kGroups[] = {
    {"Links",
     {{"OK", "Link is up to date"},
      {"Modified", "File changed since it was placed"},
      {"Missing", "File not found"},
      {"Embedded", "Embedded in the document"}}},
    {"Font types",
     {{"fontOpenType", "OpenType"},
      {"fontTT", "TrueType"},
      {"fontPS", "Type 1 (PostScript)"},
      {"fontFauxed", "Bitmap"}}},
    {"Font status",
     {{"OK", "Installed"},
      {"Missing", "Missing"},
      {"fontFauxed", "Fauxed (style made up)"},
      {"fontSubstituted", "Substituted"}}},
    {"Color models", {{"color-process", "Process"}, {"color-spot", "Spot"}, {"color-mixed-ink", "Mixed ink"}}},
    {"Color spaces",
     {{"color-cmyk", "CMYK"},
      {"color-rgb", "RGB or HSB"},
      {"color-lab", "Lab"},
      {"color-registration", "Registration"}}},
    {"Alerts", {{"warning", "Breaks a rule of the current preset"}}},
};

} // namespace

LegendWindow::LegendWindow(QWidget* parent) : QWidget(parent, Qt::Tool)
{
    setWindowTitle(QStringLiteral("Legend"));
    auto* grid = new QGridLayout(this);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(4);
    grid->setContentsMargins(16, 12, 16, 16);
    int row = 0;
    for (const Group& group : kGroups) {
        auto* title = new QLabel(QLatin1String(group.title));
        QFont font = title->font();
        font.setBold(true);
        title->setFont(font);
        if (row > 0)
            grid->setRowMinimumHeight(row++, 6);
        grid->addWidget(title, row++, 0, 1, 2);
        for (const Entry& entry : group.entries) {
            auto* icon = new QLabel;
            icon->setPixmap(namedIcon(QLatin1String(entry.image)).pixmap(16, 16));
            grid->addWidget(icon, row, 0);
            grid->addWidget(new QLabel(QLatin1String(entry.meaning)), row++, 1);
        }
    }
    grid->setColumnStretch(1, 1);
}

} // namespace quillon::ui
