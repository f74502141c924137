#include "shell/desktop/linux/CompletionSound.h"
#include "tests/desktop/PrivateDesktop.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbook {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// A machine whose one sound device writes all it plays to a file.
class Sound : public test::PrivateDesktop {
protected:
    Sound() {
        setVariable("CANBERRA_DRIVER", "alsa");
        setVariable(
            "ALSA_CONFIG_PATH",
            home_.write("asound.conf", "pcm.!default {\n type file\n slave.pcm { type null }\n file \"" +
                                           recording().string() + "\"\n format \"raw\"\n}\n"));
    }

    std::filesystem::path recording() const { return home_ / "played.raw"; }

    std::size_t heardSamples() const {
        if (!std::filesystem::exists(recording())) return 0;
        const auto samples = test::readFile(recording());
        return static_cast<std::size_t>(
            std::count_if(samples.begin(), samples.end(), [](char sample) { return sample != 0; }));
    }
};

TEST_F(Sound, isHeard) {
    CompletionSound subject("quillbook");
    subject.playCompletion();
    EXPECT_TRUE(test::await([&] { return heardSamples() > 1'000; }));
}

TEST_F(Sound, isHeardAgain) {
    CompletionSound subject("quillbook");
    subject.playCompletion();
    ASSERT_TRUE(test::await([&] { return heardSamples() > 1'000; }));
    std::filesystem::remove(recording());
    // The first may still be on its way to the file that is gone; the second opens a new one.
    EXPECT_TRUE(test::await([&] {
        subject.playCompletion();
        return heardSamples() > 1'000;
    }));
}

class Silence : public Sound, public testing::WithParamInterface<std::string> {};

TEST_P(Silence, isNoFailure) {
    const std::string lack = GetParam();
    if (lack == "driver") setVariable("CANBERRA_DRIVER", "none-such");
    if (lack == "device") setVariable("ALSA_CONFIG_PATH", home_.write("empty.conf", ""));
    {
        CompletionSound subject("quillbook");
        subject.playCompletion();
    }
    EXPECT_EQ(heardSamples(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Without, Silence, testing::Values("driver", "device"),
                         [](const auto& one) { return one.param; });

TEST_F(Sound, neverWaitsForADeviceThatHangs) {
    // Opening a pipe for writing waits until somebody reads it.
    ASSERT_EQ(::mkfifo(recording().c_str(), 0600), 0);
    const auto start = Clock::now();
    {
        CompletionSound subject("quillbook");
        for (int count = 0; count < 1'000; ++count) {
            subject.playCompletion();
        }
        EXPECT_LT(Clock::now() - start, 250ms);
    }
    EXPECT_LT(Clock::now() - start, 3s);
    const int reader = ::open(recording().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    std::size_t heard = 0;
    EXPECT_TRUE(test::await([&] {
        std::array<char, 65'536> block{};
        const auto count = ::read(reader, block.data(), block.size());
        if (count > 0) heard += static_cast<std::size_t>(count);
        return count == 0 && heard > 0;
    })) << "the device was never opened";
    ::close(reader);
}

TEST_F(Sound, notAskedForIsNotHeard) {
    { const CompletionSound subject("quillbook"); }
    EXPECT_EQ(heardSamples(), 0U);
}

} // namespace
} // namespace quillbook
