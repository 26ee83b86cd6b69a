// A PCF definition file, and the message made of what it defines.
#include "pcf.h"
#include "walker.h"

#include <string>
#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    prepare_walks();
    const int file = memfd_create("definition", 0);
    if (file < 0) return 0;
    const bool stored = size == 0 || write(file, data, size) == static_cast<ssize_t>(size);
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    RunParams params = walk_params(0);
    params.PcfFile = path.c_str();
    PcfDef definition;
    if (stored && read_pcf_file(&params, &definition) == StatusOk) {
        MQLONG length = 0;
        MQMD md = {MQMD_DEFAULT};
        std::free(make_pcf_message(&md, &definition, &length));
    }
    free_pcf_params(&definition);
    close(file);
    return 0;
}
