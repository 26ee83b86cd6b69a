#include "qmgr/core/object_handles.h"

#include <utility>

namespace mqrig::qmgr::core {

MQHOBJ ObjectHandles::add(std::unique_ptr<OpenObject> object)
{
    if (free_.empty()) {
        if (places_.size() + firstPlace > placeMask) return MQHO_UNUSABLE_HOBJ;
        places_.emplace_back();
        // Room for every place, so that closing allocates nothing.
        free_.reserve(places_.capacity());
        free_.push_back(static_cast<std::uint32_t>(places_.size() - 1));
    }
    const std::uint32_t place = free_.back();
    free_.pop_back();
    places_[place].object = std::move(object);
    ++open_;
    return static_cast<MQHOBJ>(places_[place].uses << placeBits | (place + firstPlace));
}

std::unique_ptr<OpenObject> ObjectHandles::remove(MQHOBJ hobj)
{
    if (find(hobj) == nullptr) return nullptr;
    const std::size_t index = (static_cast<std::uint32_t>(hobj) & placeMask) - firstPlace;
    Place &place = places_[index];
    place.uses = (place.uses + 1) & usesMask;
    free_.push_back(static_cast<std::uint32_t>(index));
    --open_;
    return std::move(place.object);
}

std::vector<MQHOBJ> ObjectHandles::all() const
{
    std::vector<MQHOBJ> handles;
    for (std::size_t place = 0; place < places_.size(); ++place)
        if (places_[place].object != nullptr)
            handles.push_back(static_cast<MQHOBJ>(places_[place].uses << placeBits | (place + firstPlace)));
    return handles;
}

} // namespace mqrig::qmgr::core
