// Selection strings: whatever compiles is evaluated over values of every type, and gives the same twice.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "qmgr/properties/selector.h"

using namespace mqrig::qmgr::properties;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    Selector selector;
    const MQLONG reason = Selector::compile(text, selector);
    if (reason != MQRC_NONE) return 0;
    const std::array<SelectorValue, 8> kinds = {
        SelectorValue(),
        SelectorValue::of(true),
        SelectorValue::of(std::int64_t{-7}),
        SelectorValue::of(INT64_MIN),
        SelectorValue::of(1e308),
        SelectorValue::ofText("a%b_c aaab"),
        SelectorValue::ofText("\xC3\xA9\xFF"),
        SelectorValue::ofBytes("\x01\x02"),
    };
    for (std::size_t turn = 0; turn < kinds.size(); ++turn) {
        std::vector<SelectorValue> values;
        for (std::size_t i = 0; i < selector.names().size(); ++i)
            values.push_back(kinds[(turn + i) % kinds.size()]);
        const SelectorValue first = selector.evaluate(values);
        const SelectorValue second = selector.evaluate(values);
        if (first.kind != second.kind || first.isTrue() != second.isTrue()) std::abort();
    }
    return 0;
}
