// A message of PCF structures. First byte: order and form; second: how many structures it is said to have.
#include "display.h"
#include "walker.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    prepare_walks();
    Input input(data, size);
    RunParams params = walk_params(input.byte());
    const auto count = static_cast<MQLONG>(input.byte());
    const std::vector<char> body = input.rest();
    if (body.empty()) return 0;
    printPCF(body.data(), static_cast<MQLONG>(body.size()), count, &params);
    return 0;
}
