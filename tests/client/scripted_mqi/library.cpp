#include "library.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

// There when the library that makes calls fail has been loaded before this one.
extern "C" __attribute__((weak)) void nthCallSuspend(int add);

namespace scripted {

NotTheClient::NotTheClient()
{
    if (nthCallSuspend != nullptr) nthCallSuspend(1);
}

NotTheClient::~NotTheClient()
{
    if (nthCallSuspend != nullptr) nthCallSuspend(-1);
}

namespace {

constexpr MQLONG longestBufferShown = 4096;

void writeAll(int file, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) scriptFault("record", "cannot be written");
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

// Null until the first call.
Library *opened = nullptr;

void open()
{
    opened = new Library;
    const char *script = std::getenv("MQRIG_SCRIPT");
    if (script == nullptr) return;
    opened->script = std::make_unique<Script>(script);
    opened->recordsAllFields = std::getenv("MQRIG_RECORD_ALL") != nullptr;
    if (const char *record = std::getenv("MQRIG_RECORD")) {
        opened->recordFile = ::open(record, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
        if (opened->recordFile < 0) scriptFault(record, "cannot be opened for the record");
    }
}

// Rules that no call came for, written when the program ends.
__attribute__((destructor)) void recordUnusedRules()
{
    const NotTheClient scope;
    if (opened == nullptr || opened->recordFile < 0) return;
    for (const Rule *rule : opened->script->unused()) {
        writeAll(opened->recordFile, "unused line " + std::to_string(rule->line) + ": " + rule->text + "\n");
    }
}

bool differs(const Structure &type, const Field &field, const void *data)
{
    const char *value = static_cast<const char *>(data) + field.offset;
    const char *initial = static_cast<const char *>(type.initial) + field.offset;
    return std::memcmp(value, initial, field.size) != 0;
}

} // namespace

Library &library()
{
    static std::once_flag once;
    std::call_once(once, open);
    return *opened;
}

Call::Call(std::string_view name, PMQLONG pCompCode, PMQLONG pReason)
    : name_(name), pCompCode_(pCompCode), pReason_(pReason), null_(library().script == nullptr)
{
    if (null_) {
        finish();
        return;
    }
    guard_ = std::unique_lock(library().lock);
}

void Call::note(std::string_view name, std::string_view value)
{
    head_.append(" ").append(name).append("=").append(value);
}

void Call::note(std::string_view name, long long value) { note(name, std::to_string(value)); }

void Call::noteBits(std::string_view name, MQLONG value)
{
    const Field bits{name, 0, sizeof value, Kind::Bits, 1};
    note(name, render(bits, &value));
}

void Call::noteName(std::string_view name, PMQCHAR value)
{
    // The MQI reads a full field; what the caller passed must have that many bytes or end in a null character.
    note(name, quoted({value, strnlen(value, MQ_Q_MGR_NAME_LENGTH)}));
}

void Call::noteBytes(std::string_view name, const void *bytes, MQLONG length)
{
    if (length < 0 || (bytes == nullptr && length > 0)) return;
    const std::string_view all(static_cast<const char *>(bytes), static_cast<std::size_t>(length));
    if (length <= longestBufferShown) {
        note(name, quoted(all));
        return;
    }
    unsigned sum = 2166136261U; // FNV-1a: reads every byte, and two long buffers can be told apart
    for (const char byte : all) {
        sum = (sum ^ static_cast<unsigned char>(byte)) * 16777619U;
    }
    noteBits(std::string(name) + "Sum", static_cast<MQLONG>(sum));
    note(name, quoted(all.substr(0, 64)) + "...");
}

void Call::connection(MQHCONN Hconn)
{
    hconn_ = Hconn;
    note("Hconn", Hconn);
    if (connectionState() == nullptr) refuse(MQRC_HCONN_ERROR);
}

void Call::object(MQHOBJ Hobj)
{
    note("Hobj", Hobj);
    Connection *owner = connectionState();
    if (owner != nullptr && !owner->objects.contains(Hobj)) refuse(MQRC_HOBJ_ERROR);
}

void Call::message(MQHMSG Hmsg)
{
    note("Hmsg", Hmsg);
    Connection *owner = connectionState();
    if (owner != nullptr && !owner->messages.contains(Hmsg)) refuse(MQRC_HMSG_ERROR);
}

bool Call::structure(std::string_view typeName, const void *data, std::string_view label)
{
    const Structure &type = scripted::structure(typeName);
    if (data == nullptr || !hasValidHead(type, data)) {
        refuse(type.error);
        return false;
    }
    const int version = versionOf(type, data);
    for (const Field &field : type.fields) {
        if (field.since > version) continue;
        const std::string value = render(field, data); // read in any case: bad pointers show under the sanitizers
        if (!library().recordsAllFields && !differs(type, field, data)) continue;
        detail(std::string(label.empty() ? typeName : label).append(".").append(field.name).append("=") + value);
    }
    return true;
}

bool Call::optionalStructure(std::string_view type, const void *data) { return data == nullptr || structure(type, data); }

void Call::buffer(const void *pBuffer, MQLONG BufferLength)
{
    note("BufferLength", BufferLength);
    if (BufferLength < 0) refuse(MQRC_BUFFER_LENGTH_ERROR);
    if (pBuffer == nullptr && BufferLength > 0) refuse(MQRC_BUFFER_ERROR);
    noteBytes("Buffer", pBuffer, BufferLength);
}

void Call::detail(std::string_view line) { details_.append("    ").append(line).append("\n"); }

void Call::refuse(MQLONG Reason)
{
    if (refusal_ == MQRC_NONE) refusal_ = Reason;
}

bool Call::findAnswer()
{
    if (answerFound_) return true;
    const Answer *found = library().script->find(name_, ++library().occurrences[name_]);
    answerFound_ = true;
    if (found != nullptr) answer_ = *found;
    return found != nullptr;
}

void Call::decide(MQLONG usualCompCode, MQLONG usualReason)
{
    findAnswer();
    CompCode_ = answer_.CompCode.value_or(usualCompCode);
    Reason_ = answer_.Reason.value_or(usualReason);
    if (refusal_ != MQRC_NONE) {
        CompCode_ = MQCC_FAILED;
        Reason_ = refusal_;
    }
    record();
    if (answer_.exitCode) std::exit(*answer_.exitCode);
    if (answer_.delay.count() > 0 || !answer_.events.empty()) {
        guard_.unlock();
        std::this_thread::sleep_for(answer_.delay);
        raiseEvents();
        guard_.lock();
    }
}

Connection *Call::connectionState()
{
    const auto found = library().connections.find(hconn_);
    return found == library().connections.end() ? nullptr : &found->second;
}

void Call::writeBack(std::string_view typeName, void *data) const
{
    if (data == nullptr) return;
    const Structure &type = scripted::structure(typeName);
    for (const Assignment &assignment : answer_.fields) {
        if (assignment.structure != &type || assignment.field->since > versionOf(type, data)) continue;
        std::memcpy(static_cast<char *>(data) + assignment.field->offset, assignment.value.data(),
                    assignment.value.size());
    }
}

void Call::finish()
{
    *pCompCode_ = CompCode_;
    *pReason_ = Reason_;
}

// One write for the whole call, made at its entry: the file's order is the order of the calls.
void Call::record()
{
    Library &lib = library();
    if (lib.recordFile < 0) return;
    const auto [thread, added] = lib.threads.try_emplace(std::this_thread::get_id(), static_cast<int>(lib.threads.size()) + 1);
    std::string text = "#" + std::to_string(++lib.sequence) + " t" + std::to_string(thread->second) + " ";
    text += name_ + head_;
    text += " CompCode=" + std::to_string(CompCode_) + " Reason=" + std::to_string(Reason_);
    if (refusal_ != MQRC_NONE) text += " refused";
    writeAll(lib.recordFile, text + "\n" + details_);
}

// The event handler runs on a thread of the library's own, as the MQI may do it, and has returned before the call does.
void Call::raiseEvents()
{
    if (answer_.events.empty()) return;
    MQCB_FUNCTION *handler = nullptr;
    MQCBC context = {};
    {
        const std::lock_guard reading(library().lock);
        const Connection *owner = connectionState();
        if (owner == nullptr || owner->eventHandler == nullptr) scriptFault(name_, "an event without an event handler");
        handler = owner->eventHandler;
        context.CallbackArea = owner->callbackArea;
    }
    std::memcpy(context.StrucId, MQCBC_STRUC_ID, sizeof context.StrucId);
    context.Version = MQCBC_VERSION_2;
    context.CallType = MQCBCT_EVENT_CALL;
    context.CompCode = MQCC_WARNING;
    std::thread([&] {
        for (const Event &event : answer_.events) {
            context.Reason = event.Reason;
            context.ReconnectDelay = event.ReconnectDelay;
            handler(hconn_, nullptr, nullptr, nullptr, &context);
        }
    }).join();
}

} // namespace scripted
