// The dump and the text forms of a body, with the characters of UTF-8. First byte: the form.
#include "display.h"
#include "walker.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    prepare_walks();
    Input input(data, size);
    const RunParams params = walk_params(input.byte());
    const std::vector<char> body = input.rest();
    const auto length = static_cast<MQLONG>(body.size());
    dumpmsg(body.data(), length);
    std::vector<char> text(2 * body.size() + 3);
    const std::size_t written = cnvrtmsg(body.data(), text.data(), length, params.DisplayForm);
    if (written >= text.size()) __builtin_trap();
    printEachMode(body.data(), length, params.DisplayForm);
    return 0;
}
