#include "ui/PreferencesWindow.h"

#include "app/Settings.h"
#include "ui/AppControllerKeys.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFormLayout>
#include <QRadioButton>
#include <QVBoxLayout>

namespace quillon::ui {

PreferencesWindow::PreferencesWindow(app::Settings& settings, QWidget* parent)
    : QWidget(parent, Qt::Window), m_settings(settings), m_rowSize(new QButtonGroup(this)), m_units(new QComboBox)
{
    setWindowTitle(QStringLiteral("Preferences"));
    auto* normal = new QRadioButton(QStringLiteral("Normal rows"));
    auto* small = new QRadioButton(QStringLiteral("Small rows"));
    m_rowSize->addButton(normal, 0);
    m_rowSize->addButton(small, 1);
    auto* rows = new QVBoxLayout;
    rows->addWidget(normal);
    rows->addWidget(small);
    showRowSize(settings.integer(kRowSizeSetting));
    connect(m_rowSize, &QButtonGroup::idClicked, this, &PreferencesWindow::rowSizeChanged);

    // The unit print sizes of pictures are given in; "" leaves it to the locale.
    m_units->addItem(QStringLiteral("As the system's locale"), QString());
    for (const char* unit : {"mm", "cm", "in"})
        m_units->addItem(QLatin1String(unit), QLatin1String(unit));
    m_units->setCurrentIndex(std::max(0, m_units->findData(settings.value(QStringLiteral("measurementUnits")))));
    connect(m_units, &QComboBox::currentIndexChanged, this, [this] {
        const QString unit = m_units->currentData().toString();
        if (unit.isEmpty())
            m_settings.remove(QStringLiteral("measurementUnits"));
        else
            m_settings.setValue(QStringLiteral("measurementUnits"), unit);
    });

    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("Result lists:"), rows);
    form->addRow(QStringLiteral("Print size unit:"), m_units);
}

void PreferencesWindow::showRowSize(int rowSize)
{
    if (QAbstractButton* button = m_rowSize->button(rowSize == 1 ? 1 : 0))
        button->setChecked(true);
}

} // namespace quillon::ui
