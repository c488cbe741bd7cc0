#include "screens/alerts/AlertView.h"

#include "tests/screens/ScreenDevice.h"

#include <QTest>

namespace dubrix {

struct Screen : ViewController {
    QString layout() const override { return {}; }
};

TEST_F(ScreenDevice, AnAlertViewReportsEachShowingOnceAndLivesAsLong) {
    Screen window;
    window.setModalStack(&modals);
    std::vector<ButtonIndex> reported;
    auto view = AlertView::make(window, "Title", "Message");
    const std::weak_ptr watched = view;
    view->addButtonWithTitle("Later");
    view->setCancelButtonIndex(view->addButtonWithTitle("Cancel"));
    auto token = std::make_shared<int>(); // held by the completion block and its copies alone
    INAlertWrapper::CompletionBlock completion = [&, token](AlertView& told, ButtonIndex index) {
        EXPECT_EQ(&told, watched.lock().get());
        reported.push_back(index);
    };
    const std::weak_ptr used = std::exchange(token, nullptr);

    view->showWithCompletion([&](AlertView& told, ButtonIndex index) {
        reported.push_back(10 + index);
        told.showWithCompletion(completion); // again, by its own completion
    });
    ASSERT_EQ(title(), "Title");
    EXPECT_TRUE(modals.data(modals.index(0), ModalStack::AnimatedRole).toBool());
    EXPECT_EQ(alert()->buttons(), QStringList({"Later", "Cancel"}));
    view->show();
    EXPECT_EQ(modals.rowCount(), 1);
    press("Later");
    EXPECT_TRUE(alert());
    view->cancelBySystem();
    view->cancelBySystem();
    EXPECT_FALSE(alert());
    view->show();
    alert()->press(0);
    view->cancelBySystem(); // between the press and now
    QCoreApplication::processEvents();
    view->show();
    view.reset();
    completion = nullptr;
    EXPECT_FALSE(watched.expired());
    press("Later");
    EXPECT_FALSE(modals.occupied());
    EXPECT_EQ(reported, (std::vector<ButtonIndex>{10, 1, 1, 0}));
    EXPECT_TRUE(QTest::qWaitFor([&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return watched.expired() && used.expired();
    })) << "and no longer";
}

} // namespace dubrix
