// A strict judge of XML 1.0, apart from the code that it judges: one element, with names, attributes, references and
// characters as the standard wants them. It knows no comments, no instructions and no CDATA: folders have none.
#pragma once

#include <regex>
#include <set>
#include <string>
#include <vector>

namespace mqrig::qmgr::properties {

inline bool isWellFormedXml(const std::string &text)
{
    static const std::regex token(
        R"(<(/?)([A-Za-z_\x80-\xFF][-A-Za-z0-9._:\x80-\xFF]*)((?:\s+[A-Za-z_][-A-Za-z0-9._:]*\s*=\s*(?:'[^'<]*'|"[^"<]*"))*)\s*(/?)>|([^<]+))");
    static const std::regex attribute(R"(([A-Za-z_][-A-Za-z0-9._:]*)\s*=\s*('[^']*'|"[^"]*"))");
    static const std::regex reference(R"(&(?:lt|gt|amp|quot|apos|#[0-9]+|#x[0-9A-Fa-f]+);)");
    for (const char character : text)
        if (static_cast<unsigned char>(character) < 0x20 && character != '\t' && character != '\n' && character != '\r')
            return false;
    const auto noBareAmpersand = [](const std::string &part) {
        return std::regex_replace(part, reference, "").find('&') == std::string::npos;
    };

    std::vector<std::string> open;
    std::set<std::string> prefixes = {"xml"};
    bool over = false;
    std::string::const_iterator at = text.begin();
    std::smatch found;
    while (at != text.end()) {
        if (!std::regex_search(at, text.end(), found, token, std::regex_constants::match_continuous)) return false;
        at = found[0].second;
        if (found[5].matched) {
            const bool blank = found[5].str().find_first_not_of(" \t\r\n") == std::string::npos;
            if ((open.empty() && !blank) || !noBareAmpersand(found[5]) ||
                found[5].str().find("]]>") != std::string::npos)
                return false;
            continue;
        }
        if (found[1].length() != 0) {
            if (open.empty() || open.back() != found[2] || found[3].length() != 0) return false;
            open.pop_back();
        } else {
            if (open.empty() && over) return false;
            const std::string attributes = found[3];
            std::set<std::string> names;
            for (std::sregex_iterator i(attributes.begin(), attributes.end(), attribute), none; i != none; ++i) {
                const std::string name = (*i)[1];
                if (!names.insert(name).second || !noBareAmpersand((*i)[2])) return false;
                if (name.rfind("xmlns:", 0) == 0) prefixes.insert(name.substr(6));
            }
            for (const std::string &name : names)
                if (const auto colon = name.find(':'); colon != std::string::npos && name.rfind("xmlns:", 0) != 0 &&
                                                       !prefixes.contains(name.substr(0, colon)))
                    return false;
            if (found[4].length() == 0) open.push_back(found[2]);
        }
        over = over || open.empty();
    }
    return over && open.empty();
}

} // namespace mqrig::qmgr::properties
