// The transmission queue header. First byte: order and form.
#include "display.h"
#include "walker.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    prepare_walks();
    Input input(data, size);
    RunParams params = walk_params(input.byte());
    const auto header = input.structure<MQXQH>();
    printXmitQueueHedder(&header, &params);
    return 0;
}
