// An object of the queue manager with all its stored attributes, and its form on disk.
//
// This is the general form, addressed by selector; calls that handle messages use QueueDefinition, which is read
// from it. Attributes are those of the table; what a newer version stored and this one does not know is carried
// along unchanged.
//
// Bytes: 'O', format (1), kind, name length, name, then per attribute: selector (4 bytes), type (1 byte: 0 integer,
// 1 text), length (4 bytes), value; all integers little-endian. Records of other types are kept as they are.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cmqc.h"
#include "qmgr/objects/attribute.h"
#include "qmgr/objects/attribute_value.h"
#include "qmgr/objects/object_kind.h"

namespace mqrig::qmgr::objects {

class ObjectDefinition {
public:
    ObjectDefinition() = default;
    // A new object with the table's default for every stored attribute of its kind.
    ObjectDefinition(ObjectKind kind, std::string_view name);

    ObjectKind kind() const { return kind_; }
    // Without padding.
    const std::string &name() const { return name_; }
    void rename(std::string_view name) { name_ = name; }

    // The value stored, else the table's default, else 0 or the empty text. Dynamic attributes are not here.
    MQLONG number(MQLONG selector) const;
    std::string_view text(MQLONG selector) const;
    AttributeValue value(const Attribute &attribute) const;

    // Stores a value; the caller has checked it (attribute_value.h). Trailing blanks of texts go.
    void set(MQLONG selector, MQLONG number);
    void set(MQLONG selector, std::string_view text);
    void set(const Attribute &attribute, const AttributeValue &value);

    // MQCA_CREATION_*, MQCA_ALTERATION_* from the clock, in local time as "2026-11-21" and "09.30.05".
    void stampCreated();
    void stampAltered();

    std::string encode() const;
    // Empty where the bytes are no object of this format (a store written by something else, or damage).
    static std::optional<ObjectDefinition> decode(std::string_view bytes);

    bool operator==(const ObjectDefinition &) const = default;

private:
    ObjectKind kind_ = ObjectKind::LocalQueue;
    std::string name_;
    // Sorted by selector.
    std::vector<std::pair<MQLONG, MQLONG>> numbers_;
    std::vector<std::pair<MQLONG, std::string>> texts_;
    std::string carried_; // records of types unknown to this version
};

} // namespace mqrig::qmgr::objects
