#include "screens/alerts/AlertView.h"
#include "screens/containers/ModalStack.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace dubrix {

namespace {

struct Screen : ViewController {
    QString layout() const override { return {}; }
};

} // namespace

struct AlertViewTest : ::testing::Test {
    AlertViewTest() {
        window.setModalStack(&modals);
        alert = AlertView::make(window, "Title", "Message");
        alert->addButtonWithTitle("Later");
        alert->setCancelButtonIndex(alert->addButtonWithTitle("Cancel"));
        completion = [this, used = token](AlertView& view, ButtonIndex index) {
            EXPECT_EQ(&view, watched.lock().get());
            reported.push_back(index);
        };
        watched = alert;
        used = token;
        token.reset();
    }
    AlertController* shown() const { return qobject_cast<AlertController*>(modals.topmost()); }
    /// Lets what was dismissed fade away and be deleted.
    void settle() {
        while (modals.rowCount() > 0)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    ModalStack modals;
    Screen window;
    std::shared_ptr<AlertView> alert;
    std::weak_ptr<AlertView> watched;
    /// Held by the completion block and its copies alone.
    std::shared_ptr<int> token = std::make_shared<int>();
    std::weak_ptr<int> used;
    INAlertWrapper::CompletionBlock completion;
    std::vector<ButtonIndex> reported;
};

TEST_F(AlertViewTest, ReportsEachShowingOnce) {
    alert->showWithCompletion(completion);
    ASSERT_TRUE(shown());
    EXPECT_EQ(shown()->buttons(), QStringList({"Later", "Cancel"}));
    alert->show();
    EXPECT_EQ(modals.rowCount(), 1);
    shown()->press(0);
    shown()->press(1);
    QCoreApplication::processEvents();
    alert->cancelBySystem();
    EXPECT_EQ(reported, std::vector<ButtonIndex>{0});
    EXPECT_FALSE(modals.occupied());

    alert->show();
    shown()->press(0);
    alert->cancelBySystem();
    QCoreApplication::processEvents();
    EXPECT_EQ(reported, (std::vector<ButtonIndex>{0, 1}));
    EXPECT_FALSE(modals.occupied());

    INAlertWrapper wrapper;
    alert->setDelegate(&wrapper);
    wrapper.alertViewClickedButtonAtIndex(*alert, 0);
    wrapper.alertViewCancel(*alert);
    wrapper.setCompletionBlock(completion);
    wrapper.completionBlock()(*alert, 7);
    EXPECT_EQ(reported.back(), 7);
}

TEST_F(AlertViewTest, LivesWhileShownAndItsWrapperAsLongAsIt) {
    alert->showWithCompletion(completion);
    completion = nullptr;
    alert.reset();
    EXPECT_FALSE(watched.expired());
    shown()->press(1);
    QCoreApplication::processEvents();
    EXPECT_EQ(reported, std::vector<ButtonIndex>{1});
    settle();
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(used.expired());
}

TEST_F(AlertViewTest, MayBeShownAgainByItsOwnCompletion) {
    alert->showWithCompletion(
        [this](AlertView& view, ButtonIndex) { view.showWithCompletion(completion); });
    shown()->press(0);
    QCoreApplication::processEvents();
    ASSERT_TRUE(shown());
    alert->cancelBySystem();
    EXPECT_EQ(reported, std::vector<ButtonIndex>{1});
    alert.reset();
    completion = nullptr;
    settle();
    EXPECT_TRUE(used.expired());
}

} // namespace dubrix
