#include "qmgr/command/mqsc_layout.h"

namespace mqrig::qmgr::command {
namespace {

constexpr std::size_t indent = 3;
constexpr std::size_t firstWidth = 40;
constexpr std::size_t lineWidth = 80;

} // namespace

void Layout::add(std::string_view attribute)
{
    if (secondIsFree_ && attribute.size() <= lineWidth - indent - firstWidth) {
        std::string &line = lines_.back();
        line.resize(indent + firstWidth, ' ');
        line += attribute;
        secondIsFree_ = false;
        return;
    }
    lines_.push_back(std::string(indent, ' ') + std::string(attribute));
    secondIsFree_ = attribute.size() < firstWidth;
}

} // namespace mqrig::qmgr::command
