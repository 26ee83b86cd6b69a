#include "qmgr/core/delivery.h"

#include <cstring>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "qmgr/core/md_extension.h"
#include "qmgr/properties/record.h"

namespace mqrig::qmgr::core {
namespace {

Outcome judgeLength(const GetRequest &request, std::size_t length)
{
    if (length <= request.buffer.size()) return success();
    return warning(request.has(MQGMO_ACCEPT_TRUNCATED_MSG) ? MQRC_TRUNCATED_MSG_ACCEPTED : MQRC_TRUNCATED_MSG_FAILED);
}

using Properties = std::vector<properties::Property>;

std::vector<const properties::Property *> pointersTo(const Properties &properties)
{
    std::vector<const properties::Property *> pointers;
    pointers.reserve(properties.size());
    for (const properties::Property &property : properties)
        pointers.push_back(&property);
    return pointers;
}

void addAll(Properties &&from, properties::PropertySet &to)
{
    for (properties::Property &property : from)
        to.add(std::move(property));
}

class Unpacker {
public:
    Unpacker(std::span<const std::byte> stored, const GotMessage &got)
        : body_(bodyOf(got.header, stored)), message_(std::make_unique<UnpackedMessage>())
    {
        message_->restAt = stored.size() - body_.size();
        message_->form = properties::formOf(got.header.md);
        // A damaged record ends where it is damaged.
        (void)properties::readRecord(propertiesOf(got.header, stored), set_);
    }

    // Those of the user context, before anything is unpacked. What was set goes before what the body says.
    std::vector<std::byte> userContext()
    {
        static_cast<void>(splitBody());
        std::vector<std::byte> record;
        const auto append = [&](const properties::Property &property) {
            if (property.descriptor.context == MQPD_USER_CONTEXT) properties::appendRecord(property, record);
        };
        std::set<std::string_view> names;
        for (const properties::Property &property : set_) {
            names.insert(property.name);
            append(property);
        }
        for (const properties::Property &property : inBody_)
            if (!names.contains(property.name)) append(property);
        return record;
    }

    std::unique_ptr<UnpackedMessage> unpack(PropertyDelivery delivery)
    {
        switch (delivery) {
        case PropertyDelivery::Dropped:
            takeFromBody(splitBody());
            break;
        case PropertyDelivery::InHandle:
            takeFromBody(splitBody());
            addAll(std::move(set_), message_->forHandle);
            // What was set goes before what the body says under the same name.
            std::erase_if(inBody_, [&](const properties::Property &property) {
                return message_->forHandle.find(property.name) != nullptr;
            });
            addAll(std::move(inBody_), message_->forHandle);
            break;
        case PropertyDelivery::SetInHandle:
            addAll(std::move(set_), message_->forHandle);
            break;
        case PropertyDelivery::AsPut:
            break;
        case PropertyDelivery::InHeader:
            makeHeader();
            break;
        case PropertyDelivery::InHeaderForJms:
            // The body is read only where what was set does not decide.
            if (properties::anyForJms(pointersTo(set_))) {
                makeHeader();
                break;
            }
            const properties::Split &split = splitBody();
            if (properties::anyForJms(pointersTo(inBody_)))
                makeHeader();
            else
                takeFromBody(split);
            break;
        }
        return std::move(message_);
    }

private:
    // The body is read once.
    const properties::Split &splitBody()
    {
        if (!split_) split_ = properties::splitProperties(body_, message_->form, inBody_);
        return *split_;
    }

    void takeFromBody(const properties::Split &split)
    {
        message_->front = split.headers;
        message_->restAt += split.restAt;
        message_->form = split.form;
    }

    void makeHeader()
    {
        if (set_.empty()) return;
        message_->front = properties::makeHeader(pointersTo(set_), message_->form);
        message_->form = properties::withHeader(message_->form);
    }

    std::span<const std::byte> body_;
    std::unique_ptr<UnpackedMessage> message_;
    Properties set_;
    Properties inBody_;
    std::optional<properties::Split> split_;
};

// What does not fit a version-1 descriptor goes in front of everything.
void prependExtension(MQLONG queueManagerCcsid, GotMessage &got)
{
    if (!got.unpacked) {
        got.unpacked = std::make_unique<UnpackedMessage>();
        got.unpacked->form = properties::formOf(got.header.md);
    }
    MQMD md = got.header.md;
    properties::DataForm &form = got.unpacked->form;
    properties::setForm(md, form);
    const MQMDE extension = extensionOf(md);
    const auto bytes = std::as_bytes(std::span(&extension, 1));
    got.unpacked->front.insert(got.unpacked->front.begin(), bytes.begin(), bytes.end());
    form.encoding = MQENC_NATIVE;
    form.ccsid = queueManagerCcsid;
    std::copy_n(MQFMT_MD_EXTENSION, form.format.size(), form.format.begin());
}

} // namespace

PropertyDelivery propertyDelivery(MQLONG options, bool hasMessageHandle, MQLONG propertyControl)
{
    if ((options & MQGMO_NO_PROPERTIES) != 0) return PropertyDelivery::Dropped;
    if ((options & MQGMO_PROPERTIES_FORCE_MQRFH2) != 0) return PropertyDelivery::InHeader;
    if ((options & MQGMO_PROPERTIES_COMPATIBILITY) != 0) return PropertyDelivery::InHeaderForJms;
    if ((options & MQGMO_PROPERTIES_IN_HANDLE) != 0) return PropertyDelivery::InHandle;
    // MQGMO_PROPERTIES_AS_Q_DEF
    switch (propertyControl) {
    case MQPROP_FORCE_MQRFH2:
        return PropertyDelivery::InHeader;
    case MQPROP_V6COMPAT:
        return hasMessageHandle ? PropertyDelivery::SetInHandle : PropertyDelivery::AsPut;
    default:
        break;
    }
    if (hasMessageHandle) return PropertyDelivery::InHandle;
    switch (propertyControl) {
    case MQPROP_ALL:
        return PropertyDelivery::InHeader;
    case MQPROP_NONE:
        return PropertyDelivery::Dropped;
    default:
        return PropertyDelivery::InHeaderForJms;
    }
}

Outcome prepareDelivery(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got)
{
    got.unpacked.reset();
    got.userContext.clear();
    std::size_t length = stored.size();
    if (mayHaveProperties(got.header)) [[unlikely]] {
        const auto delivery = propertyDelivery(request.options, request.hasMessageHandle, got.propertyControl);
        Unpacker unpacker(stored, got);
        if (got.savesContext) got.userContext = unpacker.userContext();
        got.unpacked = unpacker.unpack(delivery);
        length = got.unpacked->front.size() + stored.size() - got.unpacked->restAt;
    }
    if (request.extensionCcsid && !fitsVersion1(got.header.md)) [[unlikely]] {
        prependExtension(*request.extensionCcsid, got);
        length += sizeof(MQMDE);
    }
    got.dataLength = static_cast<MQLONG>(length);
    return judgeLength(request, length);
}

void copyDelivery(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got)
{
    std::span<std::byte> room = request.buffer;
    const auto copy = [&](std::span<const std::byte> part) {
        const std::size_t length = std::min(part.size(), room.size());
        if (length != 0) std::memcpy(room.data(), part.data(), length);
        room = room.subspan(length);
    };
    if (got.unpacked) [[unlikely]] {
        copy(got.unpacked->front);
        stored = stored.subspan(std::min(got.unpacked->restAt, stored.size()));
    }
    copy(stored);
    got.returnedLength = static_cast<MQLONG>(request.buffer.size() - room.size());
}

Outcome deliver(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got)
{
    const Outcome outcome = prepareDelivery(request, stored, got);
    copyDelivery(request, stored, got);
    return outcome;
}

} // namespace mqrig::qmgr::core
