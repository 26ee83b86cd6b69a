// The reader of MQRFH2 headers in front of a body. The first byte chooses encoding and character set.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "cmqc.h"
#include "qmgr/properties/property.h"
#include "qmgr/properties/rfh2.h"

using namespace mqrig::qmgr::properties;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0) return 0;
    constexpr MQLONG sets[] = {1208, 819, 500, 1200};
    DataForm form{(data[0] & 1) != 0 ? MQENC_NORMAL : MQENC_REVERSED, sets[data[0] >> 1 & 3], {}};
    form = withHeader(form);
    // Memory of the body's own, so that a step beyond it is seen.
    std::vector<std::byte> body(size - 1);
    if (!body.empty()) std::memcpy(body.data(), data + 1, body.size());

    std::vector<Property> properties;
    const Split split = splitProperties(body, form, properties);
    if (split.restAt > body.size() || split.length(body.size()) > body.size()) std::abort();
    if (!split.changed() && (!properties.empty() || !split.headers.empty())) std::abort();

    std::vector<const Property *> pointers;
    for (const Property &property : properties)
        pointers.push_back(&property);
    const std::vector<std::byte> made = makeHeader(pointers, form);
    std::vector<Property> again;
    const Split back = splitProperties(made, withHeader(form), again);
    if (!made.empty() && (back.length(made.size()) != 0 || again.size() != properties.size())) std::abort();
    return 0;
}
