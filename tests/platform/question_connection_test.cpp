// The connection that a thread has for its questions, on a real X server that closes it.
#include <X11/Xlib.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <thread>

#include "x11/question_connection.h"

namespace {

// As when the server goes: what is sent finds nobody, and nothing more comes.
int break_connection(Display* display) {
    const int file = ConnectionNumber(display);
    EXPECT_EQ(shutdown(file, SHUT_RDWR), 0);
    return file;
}

bool is_open(int file) { return fcntl(file, F_GETFD) >= 0; }

TEST(QuestionConnection, IsClosedWithItsThread) {
    int file = -1;
    std::thread([&] { file = ConnectionNumber(question_connection()); }).join();
    EXPECT_FALSE(is_open(file));
}

TEST(QuestionConnection, StaysForItsCallersWhenItBreaksAndIsClosedWithItsThread) {
    int file = -1;
    std::thread([&] {
        Display* const display = question_connection();
        file = break_connection(display);
        EXPECT_EQ(question_connection(), nullptr);
        EXPECT_TRUE(is_open(file));
        EXPECT_EQ(ConnectionNumber(display), file);
    }).join();
    EXPECT_FALSE(is_open(file));
}

TEST(QuestionConnection, ThatBreaksUnseenDoesNotEndTheProgramWithItsThread) {
    int file = -1;
    std::thread([&] { file = break_connection(question_connection()); }).join();
    EXPECT_FALSE(is_open(file));
}

TEST(QuestionConnection, OfAnotherThreadGoesOn) {
    std::thread([] { break_connection(question_connection()); }).join();
    EXPECT_NE(question_connection(), nullptr);
}

}  // namespace
