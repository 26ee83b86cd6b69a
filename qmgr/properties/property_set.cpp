#include "qmgr/properties/property_set.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace mqrig::qmgr::properties {
namespace {

std::size_t bytesOf(const Property &property)
{
    return property.name.size() + property.value.size();
}

} // namespace

const Property *PropertySet::find(std::string_view name) const
{
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : &*found->second.first;
}

MQLONG PropertySet::set(Property property, Place place)
{
    const bool atCursor = place == Place::UnderCursor || place == Place::AfterCursor || place == Place::BeforeCursor;
    const auto under = atCursor ? underCursor() : std::nullopt;
    if (atCursor && !under) return MQRC_PROPERTY_NOT_AVAILABLE;
    const auto named = byName_.find(property.name);
    if (place != Place::UnderCursor && named == byName_.end() && mixesContent(property.name))
        return MQRC_MIXED_CONTENT_NOT_ALLOWED;

    switch (place) {
    case Place::First:
        if (named != byName_.end())
            replace(named->second.first, std::move(property));
        else
            add(std::move(property));
        break;
    case Place::UnderCursor:
        replace(*under, std::move(property));
        break;
    case Place::AfterCursor:
        insert(std::next(*under), std::move(property));
        break;
    case Place::BeforeCursor:
        insert(*under, std::move(property));
        break;
    case Place::Append:
        add(std::move(property));
        break;
    }
    return MQRC_NONE;
}

void PropertySet::add(Property property)
{
    const auto place = placeOf(property.name);
    insert(place, std::move(property));
}

const Property *PropertySet::inquire(const NamePattern &pattern, Move move)
{
    if (move == Move::Stay) {
        const auto under = underCursor();
        if (!under) return nullptr;
        const List::iterator at = *under;
        return &*at;
    }
    auto from = properties_.begin();
    if (move == Move::Next && cursor_.pattern != pattern) move = Move::First;
    if (move == Move::Next) {
        if (cursor_.under == Cursor::Under::Property) from = std::next(cursor_.at);
        if (cursor_.under == Cursor::Under::Removed) from = cursor_.at;
        if (cursor_.under == Cursor::Under::RemovedLast) from = properties_.end();
    }
    if (move == Move::First && pattern.isOneName()) {
        const auto named = byName_.find(pattern.name());
        from = named == byName_.end() ? properties_.end() : named->second.first;
    }
    const auto found =
        std::find_if(from, properties_.end(), [&](const Property &property) { return pattern.matches(property.name); });
    if (found == properties_.end()) return nullptr;
    cursor_.pattern = pattern;
    moveCursor(Cursor::Under::Property, found);
    return &*found;
}

bool PropertySet::remove(std::string_view name)
{
    const auto named = byName_.find(name);
    if (named == byName_.end()) return false;
    erase(named->second.first);
    return true;
}

bool PropertySet::removeUnderCursor()
{
    const auto under = underCursor();
    if (!under) return false;
    erase(*under);
    return true;
}

void PropertySet::removeAll(const NamePattern &pattern)
{
    for (auto at = properties_.begin(); at != properties_.end();) {
        const auto here = at++;
        if (pattern.matches(here->name)) erase(here);
    }
}

std::optional<PropertySet::List::iterator> PropertySet::underCursor() const
{
    if (cursor_.under != Cursor::Under::Property) return std::nullopt;
    return cursor_.at;
}

void PropertySet::moveCursor(Cursor::Under under, List::iterator at)
{
    cursor_.under = under;
    cursor_.at = at;
}

// An element that has both a value and elements below it could not travel. The folder is no element: "a" stands in
// "usr" and has nothing to do with "a.b".
bool PropertySet::mixesContent(std::string_view name) const
{
    const std::string whole = std::string(folderOf(name)).append(1, '.').append(pathInFolder(name));
    const std::size_t folder = folderOf(name).size();
    for (std::size_t dot = whole.rfind('.'); dot > folder; dot = whole.rfind('.', dot - 1)) {
        const std::string_view path = std::string_view(whole).substr(folder + 1, dot - folder - 1);
        if (byName_.contains(nameInFolder(std::string_view(whole).substr(0, folder), path))) return true;
    }
    const std::string below = whole + ".";
    const auto next = byName_.lower_bound(below);
    return next != byName_.end() && next->first.starts_with(below);
}

PropertySet::List::iterator PropertySet::placeOf(std::string_view name)
{
    if (const auto named = byName_.find(name); named != byName_.end()) return std::next(named->second.last);
    const auto folder = lastOfFolder_.find(folderOf(name));
    return folder == lastOfFolder_.end() ? properties_.end() : std::next(folder->second);
}

// All memory first, so that a failure leaves everything as it was.
PropertySet::List::iterator PropertySet::insert(List::iterator before, Property property)
{
    List one;
    one.push_back(std::move(property));
    const auto at = one.begin();
    const std::string_view folder = folderOf(at->name);
    auto last = lastOfFolder_.find(folder);
    const bool newFolder = last == lastOfFolder_.end();
    if (newFolder) last = lastOfFolder_.emplace(folder, at).first;
    try {
        index(at, before);
    } catch (...) {
        if (newFolder) lastOfFolder_.erase(last);
        throw;
    }
    properties_.splice(before, one);
    bytes_ += bytesOf(*at);
    if (!newFolder && std::next(last->second) == at) last->second = at;
    return at;
}

void PropertySet::index(List::iterator added, List::iterator before)
{
    const auto [named, isNew] = byName_.try_emplace(added->name, Named{added, added, 1});
    if (isNew) return;
    Named &same = named->second;
    ++same.count;
    // New ones stand behind the last one nearly always.
    if (before == std::next(same.last) || before == properties_.end()) {
        same.last = added;
        return;
    }
    const auto isSame = [&](const Property &other) { return other.name == added->name; };
    if (std::find_if(before, properties_.end(), isSame) == properties_.end()) same.last = added;
    if (std::find_if(std::make_reverse_iterator(before), properties_.rend(), isSame) == properties_.rend())
        same.first = added;
}

void PropertySet::erase(List::iterator at)
{
    bytes_ -= bytesOf(*at);
    const auto behind = std::next(at);
    const bool seen = cursor_.under == Cursor::Under::Property || cursor_.under == Cursor::Under::Removed;
    if (seen && cursor_.at == at)
        moveCursor(behind == properties_.end() ? Cursor::Under::RemovedLast : Cursor::Under::Removed, behind);

    const auto folder = lastOfFolder_.find(folderOf(at->name));
    if (folder != lastOfFolder_.end() && folder->second == at) {
        const bool goesOn = at != properties_.begin() && folderOf(std::prev(at)->name) == folder->first;
        if (goesOn)
            folder->second = std::prev(at);
        else
            lastOfFolder_.erase(folder);
    }

    // The key may be the name of the property that goes.
    auto named = byName_.extract(at->name);
    Named &same = named.mapped();
    if (--same.count != 0) {
        const auto isSame = [&](const Property &other) { return other.name == at->name; };
        if (same.first == at) same.first = std::find_if(behind, properties_.end(), isSame);
        if (same.last == at)
            same.last = std::prev(std::find_if(std::make_reverse_iterator(at), properties_.rend(), isSame).base());
        named.key() = same.first->name;
        byName_.insert(std::move(named));
    }
    properties_.erase(at);
}

void PropertySet::replace(List::iterator at, Property property)
{
    bytes_ -= bytesOf(*at);
    // The name stays: it is the same, or that of the property under the cursor.
    at->type = property.type;
    at->value = std::move(property.value);
    at->form = property.form;
    at->descriptor = property.descriptor;
    at->typeName = std::move(property.typeName);
    bytes_ += bytesOf(*at);
}

} // namespace mqrig::qmgr::properties
