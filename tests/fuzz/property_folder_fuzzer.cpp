// The folder parser: whatever is read is written and read again, and is the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/properties/folder.h"
#include "qmgr/properties/property_name.h"
#include "qmgr/properties/utf8.h"

using namespace mqrig::qmgr::properties;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    // Folders that are no UTF-8 are refused before they are read.
    if (!countCharacters(text)) return 0;
    std::vector<Property> read;
    std::size_t allowance = folderAllowance;
    if (readFolder(text, read, allowance) != FolderKind::Properties || read.empty()) return 0;

    const std::string_view folder = folderOf(read.front().name);
    std::vector<const Property *> pointers;
    for (const Property &property : read) {
        if (folderOf(property.name) != folder) return 0;
        pointers.push_back(&property);
    }
    std::string written;
    writeFolder(folder, pointers, written);
    std::vector<Property> again;
    // The text that was read may have been the longer one, and allowed for more.
    std::size_t ample = std::size_t{1} << 30;
    if (readFolder(written, again, ample) != FolderKind::Properties || again.size() != read.size()) std::abort();
    for (std::size_t i = 0; i < read.size(); ++i)
        if (again[i].name != read[i].name || again[i].type != read[i].type) std::abort();
    return 0;
}
