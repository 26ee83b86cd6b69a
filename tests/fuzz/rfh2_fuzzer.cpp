// The pairs of an MQRFH2. First byte: order and form.
#include "display.h"
#include "walker.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    prepare_walks();
    Input input(data, size);
    RunParams params = walk_params(input.byte());
    const std::vector<char> body = input.rest();
    if (body.size() < sizeof(MQRFH2)) return 0; // the walk dumps what is no whole header
    static_cast<void>(printMQRFH2(body.data(), static_cast<MQLONG>(body.size()), &params));
    return 0;
}
