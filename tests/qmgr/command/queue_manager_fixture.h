// A queue manager in a folder of its own, and MQSC on it.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/command/mqsc_interpreter.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/queue_managers.h"

namespace mqrig::qmgr::command {

class QueueManagerFixture : public testing::Test {
protected:
    QueueManagerFixture()
    {
        char pattern[] = "/tmp/mqrig-command-XXXXXX";
        folder_ = mkdtemp(pattern);
        const Outcome created =
            store::createQueueManager(folder_, "QM1", objects::systemObjects("QM1"), store::DefaultQueueManager::Yes);
        EXPECT_TRUE(created.ok()) << created.Reason;
        attachment_ = connect();
    }
    ~QueueManagerFixture() override
    {
        attachment_.reset();
        std::filesystem::remove_all(folder_);
    }

    std::unique_ptr<store::Attachment> connect() { return store::attach(folder_, "QM1").attachment; }

    CommandAnswer run(std::string_view line)
    {
        bool given = false;
        MqscReader reader(
            [&]() -> std::optional<std::string> {
                if (given) return std::nullopt;
                given = true;
                return std::string(line);
            },
            [](std::string_view, bool) {});
        return runMqsc(*attachment_, *reader.next());
    }

    // The answer's lines with line ends.
    std::string answer(std::string_view line)
    {
        std::string text;
        for (const std::string &part : run(line).lines)
            text += part + '\n';
        return text;
    }

    store::QueueId idOf(std::string_view queue)
    {
        const auto stored = attachment_->findDefinition(MQOT_Q, queue);
        return stored ? stored->queue : 0;
    }

    store::QueueStatus statusOf(std::string_view queue)
    {
        store::QueueStatus status;
        const store::QueueId id = idOf(queue);
        const Outcome read = attachment_->read([&](store::ReadTransaction &transaction) {
            status = transaction.queue(id);
            return success();
        });
        EXPECT_TRUE(read.ok());
        return status;
    }

    void put(std::string_view queue, MQLONG persistence)
    {
        const store::QueueId id = idOf(queue);
        store::NewMessage message;
        message.key = attachment_->newKey(id, 0);
        message.header = {};
        message.header.md.Persistence = persistence;
        store::Ticket ticket = 0;
        ASSERT_TRUE(attachment_
                        ->update(0,
                                 [&](store::WriteTransaction &transaction) {
                                     ticket = transaction.put(message);
                                     return success();
                                 })
                        .ok());
        ASSERT_TRUE(attachment_->harden(ticket).ok());
    }

    static void open(store::Attachment &connection, store::QueueId id, const store::OpenCounts &counts)
    {
        ASSERT_TRUE(connection
                        .update(0,
                                [&](store::WriteTransaction &transaction) {
                                    transaction.addOpens(id, counts);
                                    return success();
                                })
                        .ok());
    }

    std::filesystem::path folder_;
    std::unique_ptr<store::Attachment> attachment_;
};

} // namespace mqrig::qmgr::command
