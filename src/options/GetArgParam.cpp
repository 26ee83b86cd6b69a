#include "options.h"

#include "common.h"
#include "parser.h"

#include <cstdarg>
#include <cstring>

bool refuse(const char *format, ...)
{
    flush_output();
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    return false;
}

bool refuseName(const char *name)
{
    std::printf("invalid parameter specified. \"%s\"\n", name);
    return false;
}

namespace {

const OptionRow *findOption(const char *argument)
{
    for (const OptionGroup &group : OPTION_GROUPS) {
        for (const OptionRow &row : group.rows) {
            if (std::strcmp(row.flag, argument) == 0) return &row;
        }
    }
    return nullptr;
}

const ConstantRow *findConstant(const char *argument)
{
    for (const ConstantRow &row : CONSTANT_ROWS) {
        if (std::strncmp(row.prefix, argument, std::strlen(row.prefix)) == 0) return &row;
    }
    return nullptr;
}

/// The two ways of running threads exclude each other, whichever record they were given for.
bool threadsAgree(const RunParams &primary, const RunParams &secondary)
{
    const bool shared = primary.ThreadCount != 0 || secondary.ThreadCount != 0;
    const bool inner = primary.InnerConnThreadCount != 0 || secondary.InnerConnThreadCount != 0;
    if (shared && inner) return refuse("-nt and -ni cannot be given together.\n");
    return true;
}

} // namespace

CommandLine GetArgParam(int argc, char *const argv[], RunParams *primary, RunParams *secondary)
{
    if (argc <= 1) return {CommandLine::NoArguments};

    Scan scan = {primary, secondary, primary};
    for (int i = 1; i < argc; ++i) {
        char *const argument = argv[i];
        char *const next = i + 1 < argc ? argv[i + 1] : nullptr;

        if (const OptionRow *option = findOption(argument)) {
            if (option->kind == OptionKind::Version) {
                const bool all = next != nullptr && std::strcmp(next, "all") == 0;
                return {all ? CommandLine::VersionAndAll : CommandLine::Version};
            }
            char *value = nullptr;
            if (option->missing != nullptr) {
                if (next == nullptr) {
                    refuse("Required parameter missing - %s\n", option->missing);
                    return {CommandLine::Error};
                }
                value = next;
                ++i;
            }
            if (!applyOption(scan, *option, value)) return {CommandLine::Error};
        } else if (const ConstantRow *constant = findConstant(argument)) {
            if (!applyConstant(scan, *constant, argument)) return {CommandLine::Error};
        } else {
            refuse("Undefined parameter found. \"%s\"\n", argument);
            return {CommandLine::Error};
        }
    }
    if (!threadsAgree(*primary, *secondary)) return {CommandLine::Error};
    return selectOperation(argv[0], primary, secondary);
}
