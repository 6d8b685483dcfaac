#pragma once

#include "common/tw_thread.h"

#include <atomic>
#include <cstring>
#include <stdexcept>

namespace kr_test {

enum Signal : int { ECHO = -1, STOP = 7, SUM = 9, WAIT = 11, FAIL = 13 };

/// Answers ECHO with a number that grows, SUM with the sum of the payload's bytes, stops at STOP,
/// throws at FAIL.
class CountingActor : public pwr::TWThreadActor {
public:
    int handleSignal(int sig, std::size_t size, const void* payload, int& result) override {
        ++signals;
        result = sig == SUM ? sum_i(static_cast<const unsigned char*>(payload), size) : signals.load();
        if (sig == WAIT) {
            gate.wait();
        } else if (sig == FAIL) {
            throw std::runtime_error("no more paper");
        }
        return sig == STOP ? 1 : 2; // only 1 means to stop
    }
    int handleKill() override { return 4711; }
    int init() override { return initResult; }

    std::atomic<int> signals{0};
    pwr::platform::AutoResetEvent gate;
    int initResult = 0;

private:
    static int sum_i(const unsigned char* bytes, std::size_t size) {
        int sum = 0;
        for (std::size_t i = 0; i < size; ++i) {
            sum += bytes[i];
        }
        return sum;
    }
};

} // namespace kr_test
