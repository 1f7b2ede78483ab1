#include "WindowFixture.h"

#include "support/TestSupport.h"
#include "ui/DocInfoBox.h"
#include "ui/ResultLists.h"
#include "ui/SummaryModel.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

using namespace quillon;
using quillon::test::WindowFixture;

namespace {

const QString kBrochure = QStringLiteral("resources/sample/sample-brochure.idml");

int rowsWithAlerts(const ui::ResultModel& model)
{
    int alerted = 0;
    for (int row = 0; row < model.rowCount(); ++row)
        alerted += model.index(row, model.columnOf(QStringLiteral("alert"))).data(ui::ImageNameRole).toString() ==
                   QLatin1String("warning");
    return alerted;
}

// The first link row whose name can be edited (its file is on disk).
QModelIndex firstEditableLink(const ui::LinksModel& links)
{
    for (int row = 0; row < links.rowCount(); ++row) {
        const QModelIndex index = links.index(row, 0);
        if (links.flags(index) & Qt::ItemIsEditable)
            return index;
    }
    return {};
}

} // namespace

// The bundled sample fills every list, the box and the summary; another preset judges the same
// rows again without a second preflight.
TEST(MainWindow, PreflightsTheBundledSampleAndRejudgesOnAPresetChange)
{
    WindowFixture fixture;
    ui::MainWindow& window = fixture.window();
    ASSERT_TRUE(fixture.preflight({test::repoPath(kBrochure)}));
    EXPECT_EQ(window.windowTitle(), "sample-brochure.idml");
    EXPECT_EQ(window.preflightButton()->text(), "Preflight");
    EXPECT_EQ(window.linksModel()->rowCount(), 6);
    EXPECT_TRUE(window.linksModel()->sortDescriptors().isEmpty()) << "unsorted until a header is clicked";
    EXPECT_GT(window.fontsModel()->rowCount(), 0);
    EXPECT_GT(window.colorsModel()->rowCount(), 0);
    EXPECT_EQ(window.docInfoBox()->fieldText("nameField"), "sample-brochure.idml");
    EXPECT_FALSE(window.docInfoBox()->fieldText("preflightResultsField").isEmpty());
    EXPECT_EQ(window.summaryModel()->index(5, 1, window.summaryModel()->index(3, 0)).data().toString(), "6");
    EXPECT_TRUE(fixture.alerts().empty());

    const int colorAlertsBefore = rowsWithAlerts(*window.colorsModel());
    const int linkAlertsBefore = rowsWithAlerts(*window.linksModel());
    const QString statusBefore = window.docInfoBox()->fieldText("preflightResultsField");
    window.choosePreset("Sample Print Checks");
    EXPECT_EQ(window.presetsPopup()->currentText(), "Sample Print Checks");
    EXPECT_NE(rowsWithAlerts(*window.colorsModel()) + rowsWithAlerts(*window.linksModel()),
              colorAlertsBefore + linkAlertsBefore);
    EXPECT_NE(window.docInfoBox()->fieldText("preflightResultsField"), statusBefore);
    window.choosePreset("[Default]");
    EXPECT_EQ(rowsWithAlerts(*window.colorsModel()), colorAlertsBefore);
    EXPECT_EQ(window.docInfoBox()->fieldText("preflightResultsField"), statusBefore);
}

// The summary pane collapses and comes back at the width it had, which the settings keep.
TEST(MainWindow, SummaryPaneCollapsesAndComesBackAtItsWidth)
{
    WindowFixture fixture;
    ui::MainWindow& window = fixture.window();
    window.show();
    auto* split = window.findChild<QSplitter*>("mainSplit");
    ASSERT_NE(split, nullptr);
    split->setSizes({900, 380});
    const int width = split->sizes().at(1);
    window.toggleSummary();
    EXPECT_EQ(split->sizes().at(1), 0);
    window.toggleSummary();
    EXPECT_EQ(split->sizes().at(1), width);
    const QSettings settings(fixture.folder().filePath("settings.ini"), QSettings::IniFormat);
    EXPECT_EQ(settings.value("summaryViewWidth").toInt(), width);
    EXPECT_FALSE(settings.value("summaryIsCollapsed").toBool());
}

// A batch of real documents ends with the box's pop-up listing them; choosing one shows its lists.
TEST(MainWindow, BatchOfRealSamplesSwitchesDocumentsThroughThePopup)
{
    WindowFixture fixture;
    ui::MainWindow& window = fixture.window();
    const QString article = test::samplePath("idml/sets/simpleidml/tests/regressiontests/IDML/article-1photo.idml");
    ASSERT_TRUE(fixture.preflight({test::repoPath(kBrochure), article}));
    QComboBox* popup = window.docInfoBox()->docNamesPopup();
    ASSERT_EQ(popup->count(), 2);
    EXPECT_FALSE(popup->isHidden());
    EXPECT_EQ(window.linksModel()->rowCount(), 1); // the last document shows
    Q_EMIT popup->activated(0);
    EXPECT_EQ(window.windowTitle(), "sample-brochure.idml");
    EXPECT_EQ(window.linksModel()->rowCount(), 6);
    EXPECT_EQ(window.docInfoBox()->fieldText("nameField"), "sample-brochure.idml");
}

// Cancel stops the preflight: nothing is loaded and the button and bar are back at rest.
TEST(MainWindow, CancelLeavesTheListsEmpty)
{
    WindowFixture fixture;
    ui::MainWindow& window = fixture.window();
    QSignalSpy finished(&window, &ui::MainWindow::preflightFinished);
    window.openDocument(test::samplePath("idml/manual_template_test2.idml"));
    ASSERT_TRUE(window.isPreflighting());
    EXPECT_EQ(window.preflightButton()->text(), "Cancel");
    EXPECT_FALSE(window.presetsPopup()->isEnabled());
    window.preflightButtonClicked();
    ASSERT_TRUE(finished.wait(60000));
    EXPECT_FALSE(window.isPreflighting());
    EXPECT_EQ(window.preflightButton()->text(), "Preflight");
    EXPECT_EQ(window.linksModel()->rowCount(), 0);
    EXPECT_EQ(window.fontsModel()->rowCount(), 0);
    EXPECT_TRUE(window.findChild<QProgressBar*>("progressBar")->isHidden());
}

// A document that cannot be read is reported from the worker through the main thread, which
// stays free; nothing is loaded.
TEST(MainWindow, AnUnreadableDocumentIsAlertedOnTheMainThread)
{
    WindowFixture fixture;
    const QString broken = fixture.folder().filePath("broken.idml");
    test::writeAll(broken, QByteArray(4096, 'x'));
    ASSERT_TRUE(fixture.preflight({broken}));
    ASSERT_EQ(fixture.alerts().size(), 1u);
    EXPECT_TRUE(fixture.alerts().front().critical);
    EXPECT_EQ(fixture.alertsOffMainThread(), 0);
    EXPECT_FALSE(fixture.window().isPreflighting());
    EXPECT_EQ(fixture.window().linksModel()->rowCount(), 0);
}

// Renaming in place refuses a changed extension, asks before changing the document, then renames
// the file and relinks the document: a new preflight of the document finds the new name.
TEST(MainWindow, RenameInPlaceRefusesAnotherExtensionAndRelinksTheDocument)
{
    WindowFixture fixture;
    ui::MainWindow& window = fixture.window();
    const QDir copy(fixture.folder().filePath("job"));
    QDir().mkpath(copy.path());
    ASSERT_TRUE(fixture.preflight({test::copyBundledSample(copy.path())}));
    ui::LinksModel& links = *window.linksModel();
    const QModelIndex index = firstEditableLink(links);
    ASSERT_TRUE(index.isValid());
    const QString oldPath = links.record(index).value("path").toString();
    const QFileInfo old(oldPath);

    EXPECT_FALSE(links.setData(index, old.completeBaseName() + ".txt"));
    ASSERT_EQ(fixture.alerts().size(), 2u); // the question, then the refusal
    EXPECT_EQ(fixture.alerts().back().title, "File extensions don't match");
    EXPECT_TRUE(QFile::exists(oldPath));

    fixture.answerNext(app::kAlertSecondButton); // "Cancel": nothing changes
    EXPECT_FALSE(links.setData(index, "kept." + old.suffix()));
    EXPECT_TRUE(QFile::exists(oldPath));

    // The accepted name is typed into the view's own editor, as an operator renames in place.
    const QString newName = "renamed." + old.suffix();
    window.show();
    window.linksView()->edit(index);
    auto* editor = window.linksView()->viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText(newName);
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents(); // the view commits the edit in a queued call
    EXPECT_FALSE(QFile::exists(oldPath));
    EXPECT_TRUE(QFile::exists(old.dir().filePath(newName)));
    const QModelIndex selected = window.linksView()->selectionModel()->selectedRows().value(0);
    EXPECT_EQ(links.record(selected).value("name").toString(), newName);

    ASSERT_TRUE(fixture.preflight({copy.filePath("sample-brochure.idml")}));
    QStringList names;
    for (int row = 0; row < links.rowCount(); ++row)
        names.append(links.index(row, 0).data().toString());
    EXPECT_TRUE(names.contains(newName)) << names.join(", ").toStdString();
}

// The report of what the window shows: refused with the informational alert before a preflight;
// afterwards the lists, status and chosen preset go into a PDF, and a second one is numbered.
TEST(MainWindow, SavesTheReportOfTheShownDocumentAsPdf)
{
    WindowFixture fixture;
    ui::MainWindow& window = fixture.window();
    QTemporaryDir reports;
    EXPECT_TRUE(window.saveReportAsPDF(reports.path()).isEmpty());
    ASSERT_EQ(fixture.alerts().size(), 1u);
    EXPECT_EQ(fixture.alerts().front().title, "Please preflight a document first");
    EXPECT_TRUE(QDir(reports.path()).isEmpty());

    ASSERT_TRUE(fixture.preflight({test::repoPath(kBrochure)}));
    window.choosePreset("Sample Print Checks");
    const reportpdf::ReportInputs inputs = window.shownReportInputs();
    EXPECT_EQ(inputs.presetName, "Sample Print Checks");
    EXPECT_EQ(inputs.statusLine, window.docInfoBox()->fieldText("preflightResultsField"));
    EXPECT_EQ(inputs.links.size(), 6);
    const QString first = window.saveReportAsPDF(reports.path());
    const QString second = window.saveReportAsPDF(reports.path());
    EXPECT_TRUE(first.endsWith("_Quillon_Report.pdf")) << first.toStdString();
    EXPECT_TRUE(test::readAll(first).startsWith("%PDF-"));
    EXPECT_NE(second, first);
    EXPECT_TRUE(QFileInfo::exists(second));
    EXPECT_EQ(QDir(reports.path()).entryList(QDir::Files | QDir::Hidden).size(), 2) << "no intermediate file left";
    EXPECT_EQ(fixture.alerts().size(), 1u);
}
