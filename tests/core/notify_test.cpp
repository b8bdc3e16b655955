#include <orvia/core/notify.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Call {
    std::string file;
    unsigned line;
    std::string message;
};

std::vector<Call> g_calls;
Orvia::NotifyAnswer g_answer = Orvia::NotifyAnswer::Continue;

Orvia::NotifyAnswer Record(const char* file, unsigned line, const char* message) {
    g_calls.push_back({file, line, message});
    return g_answer;
}

// Installs the recording handler for one test and leaves the process as it found it.
class NotifyTest : public testing::Test {
protected:
    void SetUp() override {
        g_calls.clear();
        g_answer = Orvia::NotifyAnswer::Continue;
        m_previous = Orvia::SetNotifyHandler(&Record);
        Orvia::ClearNotifySkipList();
    }
    void TearDown() override {
        Orvia::SetNotifyHandler(m_previous);
        Orvia::ClearNotifySkipList();
    }

private:
    Orvia::NotifyHandler m_previous = nullptr;
};

}  // namespace

TEST_F(NotifyTest, WritesTheMessageAndAsksTheHandler) {
    testing::internal::CaptureStderr();
    CTCallNotify("track.cpp", 42, "abscissa out of range");
    const std::string written = testing::internal::GetCapturedStderr();
    const std::string expected =
        "File:\ttrack.cpp\nLine:\t42\n\nYes\t= Continue\nNo\t= Debugger\nCancel\t= Skip Notification\n\n"
        "abscissa out of range\n__________________________\n";
    EXPECT_EQ(written, expected);
    ASSERT_EQ(g_calls.size(), 1u);
    EXPECT_EQ(g_calls[0].line, 42u);
    EXPECT_EQ(g_calls[0].message, expected);

    // Null texts read as empty rather than crashing.
    testing::internal::CaptureStderr();
    CTCallNotify(nullptr, 0, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("File:\t\nLine:\t0\n", 0), 0u);
}

TEST_F(NotifyTest, ContinueAndDebuggerWithoutDebuggerKeepNotifying) {
    testing::internal::CaptureStderr();
    CTCallNotify("a.cpp", 1, "x");
    g_answer = Orvia::NotifyAnswer::Debugger;  // no debugger attached under the test runner: carries on
    CTCallNotify("a.cpp", 1, "x");
    CTCallNotify("a.cpp", 1, "x");
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(g_calls.size(), 3u);
    EXPECT_EQ(Orvia::GetNotifySkipListSize(), 0u);
}

TEST_F(NotifyTest, SkipSilencesOnlyThatLocation) {
    testing::internal::CaptureStderr();
    g_answer = Orvia::NotifyAnswer::Skip;
    CTCallNotify("a.cpp", 10, "first");
    g_answer = Orvia::NotifyAnswer::Continue;
    const std::string first = testing::internal::GetCapturedStderr();
    EXPECT_NE(first.find("first"), std::string::npos);

    testing::internal::CaptureStderr();
    CTCallNotify("a.cpp", 10, "again");  // silenced: no output, no question
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(g_calls.size(), 1u);

    // Same file on another line, and same line in another file (compared by text, not by pointer).
    testing::internal::CaptureStderr();
    CTCallNotify("a.cpp", 11, "other line");
    CTCallNotify("b.cpp", 10, "other file");
    std::string file = "a.cpp";
    CTCallNotify(file.c_str(), 10, "same text, other pointer");
    testing::internal::GetCapturedStderr();
    ASSERT_EQ(g_calls.size(), 3u);
    EXPECT_EQ(g_calls[1].line, 11u);
    EXPECT_EQ(g_calls[2].file, "b.cpp");
    EXPECT_EQ(Orvia::GetNotifySkipListSize(), 1u);
}

TEST_F(NotifyTest, SkipListHoldsAtMostItsCapacity) {
    g_answer = Orvia::NotifyAnswer::Skip;
    testing::internal::CaptureStderr();
    for (unsigned line = 1; line <= Orvia::kNotifySkipListCapacity + 1; ++line)
        CTCallNotify("full.cpp", line, "fill");
    EXPECT_EQ(Orvia::GetNotifySkipListSize(), Orvia::kNotifySkipListCapacity);

    g_calls.clear();
    CTCallNotify("full.cpp", Orvia::kNotifySkipListCapacity, "last kept");
    CTCallNotify("full.cpp", Orvia::kNotifySkipListCapacity + 1, "did not fit");
    testing::internal::GetCapturedStderr();
    ASSERT_EQ(g_calls.size(), 1u);
    EXPECT_EQ(g_calls[0].line, Orvia::kNotifySkipListCapacity + 1);

    Orvia::ClearNotifySkipList();
    testing::internal::CaptureStderr();
    CTCallNotify("full.cpp", 1, "after clearing");
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(g_calls.size(), 2u);
}
