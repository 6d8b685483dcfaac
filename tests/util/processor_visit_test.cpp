#include "common/platform/processor_visit.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using pwr::platform::ProcessorVisit;

TEST(ProcessorVisit, isOnOneProcessorForAWhile) {
    const unsigned before = std::thread::hardware_concurrency();
    unsigned visited = 0;
    for (unsigned processor = 0; processor < 256; ++processor) {
        visited += ProcessorVisit(processor).isThere() ? 1U : 0U;
    }
    EXPECT_GE(visited, 1U);
    EXPECT_FALSE(ProcessorVisit(60000).isThere()) << "no system has so many";
    EXPECT_EQ(before, std::thread::hardware_concurrency()) << "the thread may run where it could before";
}

} // namespace
