// What the operating system or the store refuses: no permission, no space, no connection left. One clear line each,
// exit code 1, nothing half done.
#include <gtest/gtest.h>
#include <unistd.h>

#include <iostream>
#include <memory>
#include <vector>

#include "qmgr/store/attachment.h"
#include "transcript.h"

namespace {

// The command as somebody without privileges runs it. Root runs a copy of rigqm as `nobody`, who may not be able to
// reach the build folder.
CommandResult runUnprivileged(const std::string &command, const std::filesystem::path &store)
{
    if (geteuid() != 0) return runShell(command, "", store);
    const std::string folder = store.parent_path().string();
    return runShell("chmod 755 '" + folder + "' && mkdir -p '" + folder + "/bin' && cp '" BIN_FOLDER "/rigqm' '" +
                        folder + "/bin' && chmod -R a+rX '" + folder + "/bin' && PATH='" + folder +
                        "/bin':\"$PATH\" && exec setpriv --reuid=65534 --regid=65534 --clear-groups " + command,
                    "", store);
}

void expectOneLine(const CommandResult &result, const std::string &part)
{
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.error.starts_with("rigqm: ")) << result.error;
    EXPECT_NE(result.error.find(part), std::string::npos) << result.error;
    EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
}

TEST(RigqmRefusedFiles, MissingPermissionIsSaid)
{
    const TemporaryFolder folder;
    const std::filesystem::path store = folder.path() / "store";
    ASSERT_EQ(runShell("rigqm create QM1", "", store).exitCode, 0);
    if (geteuid() != 0) std::filesystem::permissions(store / "QM1", std::filesystem::perms::none);
    for (const char *command : {"rigqm mqsc QM1 -e 'PING QMGR'", "rigqm end QM1", "rigqm delete QM1"})
        expectOneLine(runUnprivileged(command, store), "do not allow it");
    if (geteuid() != 0) std::filesystem::permissions(store / "QM1", std::filesystem::perms::owner_all);
    EXPECT_EQ(runShell("rigqm mqsc QM1 -e 'PING QMGR'", "", store).exitCode, 0);
}

TEST(RigqmRefusedFiles, StoreFolderThatCannotBeMadeIsSaid)
{
    const TemporaryFolder folder;
    const std::filesystem::path store = folder.path() / "store";
    std::filesystem::create_directory(store);
    std::filesystem::permissions(store, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    expectOneLine(runUnprivileged("rigqm create QM1", store), "do not allow it");
    EXPECT_TRUE(std::filesystem::is_empty(store));
    std::filesystem::permissions(store, std::filesystem::perms::owner_all);
}

// In a mount namespace of its own a small file system is filled up. Where the machine allows none, files may not grow.
TEST(RigqmRefusedFiles, FullDiskIsSaid)
{
    const TemporaryFolder folder;
    const std::filesystem::path store = folder.path() / "store";
    std::filesystem::create_directory(store);
    const std::string unshare = geteuid() == 0 ? "unshare -m" : "unshare -r -m";
    const std::string mount = "mount -t tmpfs -o size=64m none '" + store.string() + "'";
    const bool mounts = runShell(unshare + " sh -c \"" + mount + "\"", "", store).exitCode == 0;
    std::cout << (mounts ? "on a tmpfs of 64 MiB\n" : "with a limit on file sizes in place of a full disk\n");

    // Large enough for a new queue manager; the live state, which comes with the first connection, finds no room.
    const std::string command = "rigqm mqsc QM1 -e 'DEF QL(A)'";
    if (mounts) {
        const std::string script = mount + "; { rigqm create QM1; dd if=/dev/zero of=" + (store / "fill").string() +
                                   " bs=64k; dd if=/dev/zero of=" + (store / "rest").string() +
                                   " bs=512; } >/dev/null 2>&1; " + command;
        expectOneLine(runShell(unshare + " sh -c \"" + script + "\"", "", store), "no space is left");
    } else {
        ASSERT_EQ(runShell("rigqm create QM1", "", store).exitCode, 0);
        expectOneLine(runShell("trap '' XFSZ; ulimit -f 1; " + command, "", store), "QM1");
    }
}

TEST(RigqmConnections, OneTooManyIsSaid)
{
    const TemporaryFolder folder;
    const std::filesystem::path store = folder.path() / "store";
    ASSERT_EQ(runShell("rigqm create QM1", "", store).exitCode, 0);
    std::vector<std::unique_ptr<mqrig::qmgr::store::Attachment>> all;
    for (;;) {
        auto attached = mqrig::qmgr::store::attach(store, "QM1");
        if (attached.outcome.failed()) break;
        all.push_back(std::move(attached.attachment));
    }
    EXPECT_GT(all.size(), 1000U);
    expectOneLine(runShell("rigqm mqsc QM1 -e 'PING QMGR'", "", store), "it has as many connections as it can keep");
    all.pop_back();
    EXPECT_EQ(runShell("rigqm mqsc QM1 -e 'PING QMGR'", "", store).exitCode, 0);
}

} // namespace
