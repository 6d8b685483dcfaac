#include "tests/support/log_capture.h"
#include "tests/threads/actors.h"

#include <gtest/gtest.h>

#include <pthread.h>

namespace {

TEST(StartFailure, leavesAThreadThatCanBeStartedLater) {
    kr_test::CountingActor actor;
    const pwr::LogCapture log;
    pwr::TWThread thread(actor, nullptr, nullptr);
    ASSERT_EQ(0, thread.init());
    pthread_attr_t before;
    pthread_attr_t huge;
    ASSERT_EQ(0, pthread_getattr_default_np(&before));
    ASSERT_EQ(0, pthread_attr_init(&huge));
    ASSERT_EQ(0, pthread_attr_setstacksize(&huge, std::size_t{1} << 50U)); // more than there are addresses
    ASSERT_EQ(0, pthread_setattr_default_np(&huge));
    const int result = thread.start();
    ASSERT_EQ(0, pthread_setattr_default_np(&before));
    EXPECT_EQ(-1, result);
    EXPECT_EQ(0U, log.text().find("Thread creation failed.\n: errnum=")) << log.text();
    EXPECT_FALSE(thread.isRunning());
    EXPECT_EQ(0, thread.start());
    EXPECT_EQ(1, thread.signal(kr_test::ECHO, true, true));
    pthread_attr_destroy(&huge);
    pthread_attr_destroy(&before);
}

} // namespace
