#include "ui/CustomAlert.h"
#include "ui/WindowSinks.h"

#include <QWidget>

#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QThread>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace quillon;
using ui::CustomAlertDialog;

namespace {

const QString kLongMessage = QStringLiteral("The link could not be copied into the package folder. ").repeated(12);

// Clicks button `index` of the next modal dialog once it is up.
void clickLater(int index)
{
    QTimer::singleShot(0, [index] {
        if (auto* custom = qobject_cast<CustomAlertDialog*>(QApplication::activeModalWidget()))
            custom->buttons().at(index)->click();
        else if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            box->buttons().at(index)->click();
    });
}

} // namespace

// Each button answers 1000 plus its index, in both the custom panel and the system box; the
// panel's buttons keep the fixed height and the minimum width, and grow 10 points a side.
TEST(CustomAlert, ButtonsAnswerByIndexAndKeepTheirGeometry)
{
    const app::AlertRequest request{QStringLiteral("Package"), kLongMessage,
                                    QStringList{QStringLiteral("Continue"), QStringLiteral("Cancel"),
                                                QStringLiteral("Continue without the missing links")},
                                    true};
    for (int index = 0; index < 3; ++index) {
        std::unique_ptr<CustomAlertDialog> dialog(CustomAlertDialog::forRequest(request, nullptr));
        dialog->open();
        dialog->buttons().at(index)->click();
        EXPECT_EQ(dialog->result(), 1000 + index);
    }
    std::unique_ptr<CustomAlertDialog> dialog(CustomAlertDialog::forRequest(request, nullptr));
    for (QPushButton* button : dialog->buttons()) {
        EXPECT_EQ(button->height(), 30);
        EXPECT_GE(button->width(), 96);
    }
    EXPECT_GT(dialog->buttons().at(2)->width(), 96);
    dialog->open();
    dialog->reject();
    EXPECT_EQ(dialog->result(), 0) << "closing without a button";

    // No buttons given: one "OK".
    std::unique_ptr<CustomAlertDialog> plain(
        CustomAlertDialog::forRequest({QStringLiteral("t"), {}, {}, false}, nullptr));
    ASSERT_EQ(plain->buttons().size(), 1);
    EXPECT_EQ(plain->buttons().first()->text(), QStringLiteral("OK"));
    EXPECT_TRUE(plain->suppressionButton()->isHidden());
    EXPECT_EQ(plain->suppressionButton()->text(), QStringLiteral("Do not show this message again"));

    // The presenter chooses by the texts' height and answers alike either way.
    clickLater(1);
    EXPECT_EQ(ui::showCustomAlert(request, nullptr), 1001);
    clickLater(1);
    EXPECT_EQ(ui::showCustomAlert({QStringLiteral("Short"), QStringLiteral("Brief."), request.buttons, false}, nullptr),
              1001);
}

// Both texts measured 145 points wide: above 220 points with 15 added takes the custom panel.
TEST(CustomAlert, HeightRuleChoosesThePanel)
{
    EXPECT_FALSE(ui::needsCustomAlert(QStringLiteral("Error"), QStringLiteral("The file could not be read.")));
    EXPECT_FALSE(ui::needsCustomAlert(QString(), QString()));
    EXPECT_TRUE(ui::needsCustomAlert(QStringLiteral("Error"), kLongMessage));
    // A long title alone counts too.
    EXPECT_TRUE(ui::needsCustomAlert(kLongMessage, QString()));
}

// A worker that asks waits until the user has answered on the main thread.
TEST(MainThreadAlertSink, BlocksTheWorkerUntilAnswered)
{
    std::atomic<bool> presentedOnMain = false;
    QWidget window;
    ui::MainThreadAlertSink sink(&window);
    sink.setPresenter([&](const app::AlertRequest& request) {
        presentedOnMain = QThread::currentThread() == QApplication::instance()->thread();
        clickLater(1);
        std::unique_ptr<CustomAlertDialog> dialog(CustomAlertDialog::forRequest(request, nullptr));
        return dialog->exec();
    });
    std::atomic<int> answer = -1;
    std::thread worker([&] {
        answer = app::runAlert(sink, QStringLiteral("Missing links"), QStringLiteral("Continue?"),
                               QStringList{QStringLiteral("Continue"), QStringLiteral("Stop")}, false);
    });
    QElapsedTimer waited;
    waited.start();
    while (answer == -1 && waited.elapsed() < 20000)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    worker.join();
    EXPECT_EQ(answer, 1001);
    EXPECT_TRUE(presentedOnMain);
}
