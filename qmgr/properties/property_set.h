// The properties of a message in their order, with the cursor of the MQI.
//
// Names may occur more than once. Finding, adding and removing do not grow slower with the number of properties, save
// for properties of one name among each other.
#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "cmqc.h"
#include "qmgr/properties/property.h"
#include "qmgr/properties/property_name.h"

namespace mqrig::qmgr::properties {

class PropertySet {
public:
    PropertySet() = default;
    PropertySet(PropertySet &&) = default;
    PropertySet &operator=(PropertySet &&) = default;
    PropertySet(const PropertySet &) = delete;
    PropertySet &operator=(const PropertySet &) = delete;

    bool empty() const { return properties_.empty(); }
    std::size_t size() const { return properties_.size(); }
    // Of all names and values.
    std::size_t bytes() const { return bytes_; }
    void clear() { *this = PropertySet(); }

    auto begin() const { return properties_.begin(); }
    auto end() const { return properties_.end(); }

    // The first one of this canonical name, or null.
    const Property *find(std::string_view name) const;

    enum class Place {
        First,        // the first one of the name gets the value; without one, as Append
        UnderCursor,  // the one under the cursor gets the value and keeps its name
        AfterCursor,  // a new one
        BeforeCursor, // a new one
        Append,       // a new one behind those of its name, else behind those of its folder
    };
    // MQRC_NONE, MQRC_PROPERTY_NOT_AVAILABLE without a property under the cursor, MQRC_MIXED_CONTENT_NOT_ALLOWED.
    MQLONG set(Property property, Place place);
    // Appends without a check of the content.
    void add(Property property);

    enum class Move {
        First,
        Next, // behind the cursor; the first one when there is no cursor, or when it has got there by another pattern
        Stay, // under the cursor, whatever the pattern
    };
    // Moves the cursor and answers what it stands on; null, with the cursor as it was, when there is none such.
    const Property *inquire(const NamePattern &pattern, Move move);
    void resetCursor() { cursor_ = Cursor(); }
    // Where the cursor stands, to put it back before anything else is done with the set.
    class Cursor {
        friend class PropertySet;
        enum class Under { Nothing, Property, Removed, RemovedLast };
        Under under = Under::Nothing;
        std::list<Property>::iterator at; // the property, or the one that stood behind it
        NamePattern pattern;              // that has moved it
    };
    Cursor cursor() const { return cursor_; }
    void setCursor(const Cursor &cursor) { cursor_ = cursor; }

    // Removes the first one of this name, or the one under the cursor. Whether there was one.
    bool remove(std::string_view name);
    bool removeUnderCursor();
    // Removes all that match.
    void removeAll(const NamePattern &pattern);

private:
    using List = std::list<Property>;
    struct Named {
        List::iterator first;
        List::iterator last;
        std::size_t count = 0;
    };
    bool mixesContent(std::string_view name) const;
    List::iterator placeOf(std::string_view name);
    List::iterator insert(List::iterator before, Property property);
    void index(List::iterator added, List::iterator before);
    void erase(List::iterator at);
    void replace(List::iterator at, Property property);
    std::optional<List::iterator> underCursor() const;
    void moveCursor(Cursor::Under under, List::iterator at);

    List properties_;
    std::map<std::string_view, Named> byName_; // the keys stand in the list
    std::map<std::string, List::iterator, std::less<>> lastOfFolder_;
    Cursor cursor_;
    std::size_t bytes_ = 0;
};

} // namespace mqrig::qmgr::properties
