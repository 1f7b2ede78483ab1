#include "ui/AppController.h"

#include "app/Log.h"
#include "app/Settings.h"
#include "ui/AppControllerKeys.h"
#include "ui/MainWindow.h"

#include <QHeaderView>
#include <QMenu>
#include <QStandardItemModel>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using ui::AppController;

namespace {

QAction* actionTitled(QMenu* menu, const QString& title)
{
    for (QAction* action : menu->actions())
        if (action->text() == title)
            return action;
    return nullptr;
}

} // namespace

// The maker's folder, the support folder and its Presets folder are made when missing, and a
// second launch makes (and so disturbs) none of them.
TEST(AppController, SupportFoldersAreMadeOnlyWhenMissing)
{
    QTemporaryDir home;
    const QByteArray saved = qgetenv("QUILLON_SUPPORT_DIR");
    const QString appDir = home.filePath(QStringLiteral("Tornvale/Quillon"));
    qputenv("QUILLON_SUPPORT_DIR", appDir.toUtf8());
    const QStringList made = AppController::makeSupportFolders();
    EXPECT_EQ(made,
              (QStringList{home.filePath(QStringLiteral("Tornvale")), appDir, appDir + QStringLiteral("/Presets")}));
    EXPECT_TRUE(AppController::makeSupportFolders().isEmpty());
    qputenv("QUILLON_SUPPORT_DIR", saved);
}

// Row size 0: rows of 16 with text of 11; row size 1: rows of 12 with text of 9.
TEST(AppController, RowSizeSetsRowHeightAndTextOfTheViews)
{
    QStandardItemModel model;
    for (int i = 0; i < 3; ++i)
        model.appendRow(new QStandardItem(QStringLiteral("Myriad Pro Regular")));
    QTreeView view;
    view.setModel(&model);
    view.resize(300, 200);
    view.show();
    for (const auto& [rowSize, height, text] : {std::tuple{1, 12, 9}, std::tuple{0, 16, 11}}) {
        AppController::setTableTextSize({&view}, rowSize);
        view.doItemsLayout();
        EXPECT_EQ(view.visualRect(model.index(1, 0)).height(), height) << rowSize;
        EXPECT_EQ(view.font().pixelSize(), text);
        EXPECT_EQ(view.header()->font().pixelSize(), text);
    }
}

// Launch and quit: the Help menu's switches are stored, the page layout and window state are
// kept across launches, and unreadable page-layout data falls back to a valid layout.
TEST(AppController, HelpMenuSwitchesAndQuitStateAreKept)
{
    QTemporaryDir folder;
    app::Settings settings(folder.filePath(QStringLiteral("defaults.ini")));
    const QPageLayout letter(QPageSize(QPageSize::Letter), QPageLayout::Landscape, QMarginsF(20, 30, 20, 30));
    {
        AppController controller(settings);
        controller.applicationWillFinishLaunching();
        QAction* debug = actionTitled(controller.helpMenu(), QStringLiteral("Enable Debugging"));
        ASSERT_NE(debug, nullptr);
        debug->trigger();
        EXPECT_TRUE(settings.boolean(ui::kDebuggingIsEnabledSetting));
        EXPECT_TRUE(app::debugLoggingEnabled());
        debug->trigger();
        EXPECT_FALSE(settings.boolean(ui::kDebuggingIsEnabledSetting));
        EXPECT_FALSE(app::debugLoggingEnabled());
        for (const char* title : {"Legend", "Preferences...", "Quillon Support", "Check for Updates..."})
            EXPECT_NE(actionTitled(controller.helpMenu(), QLatin1String(title)), nullptr) << title;

        controller.setRowSize(1);
        EXPECT_EQ(settings.integer(ui::kRowSizeSetting), 1);
        controller.setPageLayout(letter);
        controller.mainWindow()->resize(900, 760);
        controller.applicationWillTerminate();
    }
    EXPECT_TRUE(settings.contains(QStringLiteral("pdfPresetNames")));
    AppController again(settings);
    again.applicationWillFinishLaunching();
    EXPECT_TRUE(again.pageLayout().isEquivalentTo(letter));
    EXPECT_EQ(again.mainWindow()->size(), QSize(900, 760));
    EXPECT_TRUE(ui::pageLayoutFromData(QByteArray("not a layout")).isValid());
}
