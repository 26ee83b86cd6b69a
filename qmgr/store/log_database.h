// The log: `log.db`, an SQLite database in WAL mode whose commits survive a power loss. It holds the object
// definitions, the committed persistent messages by their sequence number, and one row about the queue manager.
//
// It only ever sees committed work. Nobody reads it while the queue manager runs, except to rebuild the live state;
// anyone may look into it with sqlite3.
//
// Every write is made under the log lock of the present life (or, while there is none, under the start-up lock), so
// SQLite's own locks are only met when somebody looks from outside, or for the moment in which the kernel takes
// apart a process that was killed holding them: then a short wait of our own, never its sleeping busy handler.
//
// A process that is late, with a lock of a life that is over, is refused by the generation in the row about the
// queue manager: every transaction that changes messages or definitions goes through advance().
//
// Outcomes: MQRC_STORAGE_NOT_AVAILABLE and MQRC_RESOURCE_PROBLEM mean that the transaction certainly did not happen
// and the log is as good as before. MQRC_CONNECTION_BROKEN: the life is over. MQRC_ENVIRONMENT_ERROR: made by a newer
// version. MQRC_NOT_AUTHORIZED. MQRC_UNEXPECTED_ERROR: damaged, foreign, or it cannot be known whether the last
// transaction is on disk; the log must not be used again in this life.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "qmgr/store/attachment.h"

struct sqlite3;
struct sqlite3_stmt;

namespace mqrig::qmgr::store {

class LogDatabase {
public:
    struct Opened {
        Outcome outcome;
        std::unique_ptr<LogDatabase> log;
    };
    // Makes a new log with a queue manager that is running, has no objects and has never lived.
    static Opened create(const std::filesystem::path &file, std::string_view name);
    // Opens it, bringing an older format up to date in one transaction.
    static Opened open(const std::filesystem::path &file);
    ~LogDatabase();
    LogDatabase(const LogDatabase &) = delete;
    LogDatabase &operator=(const LogDatabase &) = delete;

    // The row about the queue manager.
    struct QueueManagerRow {
        Outcome outcome;
        std::string name;
        State state = State::Ended;
        std::uint64_t generation = 0;   // number of the present or last life
        Ticket ticket = 0;              // highest ticket of that life that is in the log
        std::uint64_t sequenceBase = 0; // where the sequence numbers of that life began
    };
    [[nodiscard]] QueueManagerRow queueManager();
    // The highest sequence number of any message; 0 if there is none, or if stepsOutcome() says that it failed.
    [[nodiscard]] std::uint64_t highestSequence();

    // One transaction. After a failed step commit() answers that failure and nothing has happened.
    Outcome begin();
    Outcome commit();
    void rollback();

    // Brings everything from the write-ahead file into the database and empties the former, as far as nobody reads it
    // at the moment: what is damaged in it later is in nobody's way, and the next life's commits stand alone in it.
    // Between transactions, by whoever may write.
    void settle();

    // Steps of a transaction.

    // Makes sure that a transaction can insert messages of this many bytes in all (headers included) and that there is
    // room behind it for many small ones that delete: so that a full log can always be emptied. A step
    // of every transaction that inserts messages, before it does. Fails the transaction with
    // MQRC_STORAGE_NOT_AVAILABLE if the disk does not have the space.
    void makeRoom(std::uint64_t messages, std::uint64_t bytes);

    void insertMessage(const MessageKey &key, const MessageHeader &header, std::span<const std::byte> body);
    void deleteMessage(std::uint64_t sequence);
    void setBackoutCount(std::uint64_t sequence, std::uint64_t count);
    void deleteMessagesOf(QueueId queue);
    void storeDefinition(const Definition &definition);
    void deleteDefinition(MQLONG type, std::string_view name);
    // A queue number never given before.
    [[nodiscard]] QueueId takeQueueId();
    // Stores the highest ticket of the life `generation`, or fails the transaction if that life is over.
    void advance(std::uint64_t generation, Ticket ticket);
    void setState(std::uint64_t generation, State state);
    // Begins life number `generation`. Its state stays what it was until the life is complete.
    void beginLife(std::uint64_t generation, std::uint64_t sequenceBase);
    [[nodiscard]] Outcome stepsOutcome() const { return steps_; }

    // Its files could not be opened as they should be, or a transaction not rolled back. It is of no more use; another
    // one may be.
    [[nodiscard]] bool isStale() const { return stale_; }

    // Reads everything. The visitor answers false to stop; views live for the visit. A row whose checksum is wrong
    // ends the walk with MQRC_UNEXPECTED_ERROR.
    template <class Visit>
    Outcome forEachMessage(Visit &&visit)
    {
        Reader reader(*this, Rows::Messages);
        while (reader.nextMessage()) {
            if (!visit(reader.key, reader.header, reader.body)) break;
        }
        return reader.outcome;
    }
    template <class Visit>
    Outcome forEachDefinition(Visit &&visit)
    {
        Reader reader(*this, Rows::Definitions);
        while (reader.nextDefinition()) {
            if (!visit(reader.definition)) break;
        }
        return reader.outcome;
    }

private:
    enum Statement : std::uint8_t {
        Begin,
        Commit,
        Rollback,
        InsertMessage,
        DeleteMessage,
        SetBackoutCount,
        DeleteMessagesOf,
        StoreDefinition,
        DeleteDefinition,
        TakeQueueId,
        Advance,
        SetState,
        BeginLife,
        ReadQueueManager,
        HighestSequence,
        ReadMessages,
        ReadDefinitions,
        PageCount,
        FreePages,
        statements
    };
    enum class Rows : std::uint8_t { Messages, Definitions };
    struct Reader {
        Reader(LogDatabase &log, Rows rows);
        ~Reader();
        Reader(const Reader &) = delete;
        Reader &operator=(const Reader &) = delete;
        bool nextMessage();
        bool nextDefinition();
        bool step();

        LogDatabase &log;
        sqlite3_stmt *statement;
        Outcome outcome;
        MessageKey key;
        MessageHeader header{};
        std::span<const std::byte> body;
        Definition definition;
    };

    LogDatabase() = default;
    int connect(const std::filesystem::path &file);
    int configure();
    Outcome bringUpToDate();
    int execute(const char *sql);
    [[nodiscard]] std::uint64_t count(Statement which);
    [[nodiscard]] sqlite3_stmt *prepared(Statement which);
    void run(sqlite3_stmt *statement);
    void fail(int code);
    bool writeOver();

    sqlite3 *database_ = nullptr;
    std::array<sqlite3_stmt *, statements> prepared_{};
    std::uint64_t databaseSpace_ = 0; // bytes of the database file that are allocated for certain
    std::uint64_t aheadSpace_ = 0;    // the same of the write-ahead file
    Outcome steps_;
    bool stale_ = false;
};

} // namespace mqrig::qmgr::store
