// What a piece of work writes to standard output and standard error.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

struct Captured {
    std::string out;
    std::string err;
};

template <class Work>
Captured captured(Work work)
{
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    work();
    std::fflush(stdout);
    Captured both;
    both.out = testing::internal::GetCapturedStdout();
    both.err = testing::internal::GetCapturedStderr();
    return both;
}
