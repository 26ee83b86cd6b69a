// What the targets over the client's display share: a record, and a standard output that nobody reads.
#pragma once

#include "RunParams.h"
#include "common.h"
#include "tables.h"

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

/// Once: the display goes nowhere, and characters are those of UTF-8 where the system has such a locale.
inline void prepare_walks()
{
    static const bool done = [] {
        if (std::freopen("/dev/null", "w", stdout) == nullptr) std::perror("/dev/null");
        std::setlocale(LC_CTYPE, "C.UTF-8");
        return true;
    }();
    static_cast<void>(done);
}

/// The bytes of an input, taken from its front.
class Input {
public:
    Input(const std::uint8_t *data, std::size_t size) : data_(data), size_(size) {}

    unsigned byte()
    {
        if (size_ == 0) return 0;
        --size_;
        return *data_++;
    }
    /// A structure, with zeros where the input ends.
    template <class Structure>
    Structure structure()
    {
        Structure structure{};
        const std::size_t there = std::min(size_, sizeof structure);
        if (there != 0) std::memcpy(&structure, data_, there);
        data_ += there;
        size_ -= there;
        return structure;
    }
    /// What is left, in memory of exactly its size.
    std::vector<char> rest() const { return {data_, data_ + size_}; }

private:
    const std::uint8_t *data_;
    std::size_t size_;
};

/// A record as a get leaves it. The byte chooses order and form.
inline RunParams walk_params(unsigned choice)
{
    RunParams params = DEFAULT_RUN_PARAMS;
    params.DataEncoding = (choice & 1U) != 0 ? MQENC_NORMAL : MQENC_NATIVE;
    constexpr MQLONG forms[] = {OutputFormText, OutputFormRaw, OutputFormHex};
    params.DisplayForm = forms[(choice >> 1) % 3];
    return params;
}
