#include "shell/application/UpdateController.h"
#include "tests/support/ManualMainThread.h"

#include <utility>

#include <gtest/gtest.h>

namespace quillbook::test {
namespace {

class FakeUpdateService final : public UpdateService {
public:
    bool canCheckForUpdates() const override { return can; }
    void checkForUpdates() override { ++checks; }
    std::shared_ptr<void> observe(ChangeHandler given) override {
        handler = std::move(given);
        auto made = std::make_shared<int>(0);
        token = made;
        return made;
    }
    void change(bool value) {
        can = value;
        if (!token.expired()) handler();
    }

    bool can = false;
    int checks = 0;
    ChangeHandler handler;
    std::weak_ptr<void> token;
};

class UpdateControllerTest : public testing::Test {
protected:
    std::shared_ptr<FakeUpdateService> service = std::make_shared<FakeUpdateService>();
    std::shared_ptr<ManualMainThread> mainThread = std::make_shared<ManualMainThread>();
};

TEST_F(UpdateControllerTest, withoutAServiceThereAreNoUpdates) {
    UpdateController controller(nullptr, mainThread);
    controller.checkForUpdates();
    EXPECT_FALSE(controller.hasUpdates());
    EXPECT_FALSE(controller.canCheckForUpdates());
}

TEST_F(UpdateControllerTest, startsWithWhatTheServiceSays) {
    EXPECT_FALSE(UpdateController(service, mainThread).canCheckForUpdates());
    service->can = true;
    EXPECT_TRUE(UpdateController(service, mainThread).canCheckForUpdates());
}

TEST_F(UpdateControllerTest, asksTheServiceToCheck) {
    UpdateController controller(service, mainThread);
    EXPECT_TRUE(controller.hasUpdates());
    controller.checkForUpdates();
    EXPECT_EQ(service->checks, 1);
}

TEST_F(UpdateControllerTest, takesAChangeOnTheMainThread) {
    UpdateController controller(service, mainThread);
    int changes = 0;
    controller.observe([&] { ++changes; });
    service->change(true);
    EXPECT_FALSE(controller.canCheckForUpdates());
    mainThread->turn();
    EXPECT_TRUE(controller.canCheckForUpdates());
    EXPECT_EQ(changes, 1);
}

TEST_F(UpdateControllerTest, announcesNothingWhereNothingChanged) {
    UpdateController controller(service, mainThread);
    int changes = 0;
    controller.observe([&] { ++changes; });
    service->change(false);
    mainThread->turn();
    EXPECT_EQ(changes, 0);
}

TEST_F(UpdateControllerTest, endsItsObservationWithItself) {
    { const UpdateController controller(service, mainThread); }
    EXPECT_TRUE(service->token.expired());
}

TEST_F(UpdateControllerTest, changeUnderWayOutlivesTheController) {
    {
        const UpdateController controller(service, mainThread);
        service->change(true);
    }
    mainThread->turn();
    service->handler();
    mainThread->turn();
    EXPECT_EQ(mainThread->posted(), 0U);
}

} // namespace
} // namespace quillbook::test
