// Command messages (PCF) as anybody may put them on the command queue: the first byte chooses the encoding, the rest
// is the message. Whatever it is, the queue manager lives on and answers with well-formed replies.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "qmgr/command/pcf_interpreter.h"
#include "qmgr/command/pcf_reader.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/queue_managers.h"

using namespace mqrig::qmgr;

namespace {

// A queue manager in memory where there is room for it, gone at the end of the process.
class QueueManager {
public:
    QueueManager()
    {
        std::error_code ignored;
        const bool memory = std::filesystem::is_directory("/dev/shm", ignored);
        std::string pattern = std::string(memory ? "/dev/shm" : "/tmp") + "/mqrig-fuzz-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) std::abort();
        folder_ = pattern;
        const Outcome created =
            store::createQueueManager(folder_, "QM1", objects::systemObjects("QM1"), store::DefaultQueueManager::Yes);
        if (created.failed()) std::abort();
        attachment_ = store::attach(folder_, "QM1").attachment;
        if (attachment_ == nullptr) std::abort();
    }
    ~QueueManager()
    {
        attachment_.reset();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    QueueManager(const QueueManager &) = delete;
    QueueManager &operator=(const QueueManager &) = delete;

    store::Attachment &attachment() { return *attachment_; }

private:
    std::filesystem::path folder_;
    std::unique_ptr<store::Attachment> attachment_;
};

MQLONG encodingOf(std::uint8_t choice)
{
    switch (choice & 3) {
    case 0:
        return MQENC_INTEGER_REVERSED;
    case 1:
        return MQENC_INTEGER_NORMAL;
    default:
        return choice;
    }
}

void expect(bool condition, const char *what)
{
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

void checkReplies(const command::PcfAnswer &answer)
{
    expect(!answer.replies.empty(), "no reply");
    MQLONG number = 0;
    for (const std::string &reply : answer.replies) {
        const command::ReadPcf read =
            command::readPcf({reinterpret_cast<const std::byte *>(reply.data()), reply.size()}, MQENC_NATIVE);
        expect(!read.fault, "a reply that cannot be read");
        expect(read.header.MsgSeqNumber == ++number, "replies out of order");
        const bool last = static_cast<std::size_t>(number) == answer.replies.size();
        expect(read.header.Control == (last ? MQCFC_LAST : MQCFC_NOT_LAST), "the last reply is not marked");
        if (last) expect((read.header.CompCode == MQCC_FAILED) == (answer.CompCode == MQCC_FAILED), "another outcome");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static QueueManager queueManager;
    if (size == 0) return 0;
    const std::span<const std::byte> message(reinterpret_cast<const std::byte *>(data) + 1, size - 1);
    checkReplies(command::runPcf(queueManager.attachment(), {message, encodingOf(data[0]), 0, (data[0] & 4) != 0}));
    return 0;
}
