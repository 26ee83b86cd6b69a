// C and C++ programs start from the same bytes.
#include "cmqcfc.h"
#include "cmqxc.h"

#include "initialisers_in_c.h"

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

#define INITIALISER(structure, initialiser) const structure of_##initialiser = {initialiser};
#include "initialisers_cmqc.inc"
#include "initialisers_cmqcfc.inc"
#include "initialisers_cmqxc.inc"
#undef INITIALISER

std::string bytesOf(const void *structure, std::size_t length)
{
    return std::string(static_cast<const char *>(structure), length);
}

std::map<std::string, std::string> initialisedInCxx()
{
    std::map<std::string, std::string> all;
#define INITIALISER(structure, initialiser) all[#initialiser] = bytesOf(&of_##initialiser, sizeof(structure));
#include "initialisers_cmqc.inc"
#include "initialisers_cmqcfc.inc"
#include "initialisers_cmqxc.inc"
#undef INITIALISER
    return all;
}

std::map<std::string, std::string> initialisedInC()
{
    std::map<std::string, std::string> all;
    for (const InitialisedInC *list : {cmqcInC, cmqxcInC, cmqcfcInC})
        for (; list->initialiser != nullptr; ++list)
            all[list->initialiser] = bytesOf(list->bytes, list->length);
    return all;
}

TEST(DefaultInitialisers, HaveTheSameBytesInCAndInCxx)
{
    const auto inC = initialisedInC();
    const auto inCxx = initialisedInCxx();
    ASSERT_EQ(inC.size(), inCxx.size());
    EXPECT_EQ(inC.size(), 50U); // MQCBC has none, MQCD has two
    for (const auto &[initialiser, bytes] : inCxx)
        EXPECT_EQ(inC.at(initialiser), bytes) << initialiser;
}

} // namespace
