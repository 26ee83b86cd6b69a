// A definition file made of a text, and what the reader makes of it.
#pragma once

#include "calls_test.h"
#include "pcf.h"

#include <cstring>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

/// A definition whose parameters are freed with it.
struct Definition : PcfDef {
    Definition() = default;
    ~Definition() { free_pcf_params(this); }
    Definition(const Definition &) = delete;
    Definition &operator=(const Definition &) = delete;

    std::vector<std::string> structures() const
    {
        std::vector<std::string> all;
        for (const PcfParamNode *node = Params; node != nullptr; node = node->next) {
            all.emplace_back(reinterpret_cast<const char *>(node->structure),
                             static_cast<std::size_t>(node->structure[1]));
        }
        return all;
    }
};

class DefinitionTest : public CallsTest {
protected:
    DefinitionTest() : path_(testing::TempDir() + "definition." + std::to_string(getpid())) {}
    ~DefinitionTest() override { unlink(path_.c_str()); }

    Written read(const std::string &text)
    {
        std::ofstream(path_, std::ios::binary) << text;
        return read_file(path_);
    }
    Written read_file(const std::string &path)
    {
        free_pcf_params(&def);
        params.PcfFile = path.c_str();
        return written([this] { return read_pcf_file(&params, &def); });
    }

    Definition def;

private:
    std::string path_;
};
