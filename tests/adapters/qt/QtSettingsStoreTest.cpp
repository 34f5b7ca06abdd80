#include <gmock/gmock.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QTimer>
#include <array>
#include <cstring>

#include "adapters/qt/SettingsRig.h"
#include "platform/qt/QtSettingsStore.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

// Counts events of a file since construction.
class FileWatch {
public:
    explicit FileWatch(const std::filesystem::path& file)
        : name_(file.filename()), descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        inotify_add_watch(descriptor_, file.parent_path().c_str(),
                          IN_MOVED_TO | IN_MODIFY | IN_CREATE | IN_DELETE);
    }
    ~FileWatch() { close(descriptor_); }
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

    int Replacements() { return Read().replacements_; }
    // All other events that change or remove the file.
    int OtherChanges() { return Read().otherChanges_; }

private:
    FileWatch& Read() {
        alignas(inotify_event) std::array<char, 65536> events{};
        ssize_t length = 0;
        while ((length = read(descriptor_, events.data(), events.size())) > 0)
            for (const char* next = events.data(); next < events.data() + length;) {
                inotify_event event{};
                std::memcpy(&event, next, sizeof event);
                if (event.len > 0 && name_ == next + sizeof event)
                    ++((event.mask & IN_MOVED_TO) != 0 ? replacements_ : otherChanges_);
                next += sizeof event + event.len;
            }
        return *this;
    }

    std::string name_;
    int descriptor_;
    int replacements_ = 0;
    int otherChanges_ = 0;
};

class QtSettingsStoreWriting : public SettingsRig {};

TEST_F(QtSettingsStoreWriting, ReadingLeavesNoTrace) {
    std::filesystem::remove(Folder());
    {
        const auto store = Open();
        EXPECT_EQ(store->Get("Settings", "Auto", "1"), "1");
        store->Write();
        QCoreApplication::processEvents();
    }
    EXPECT_FALSE(std::filesystem::exists(Folder()));
    EXPECT_TRUE(reports_.empty());
}

TEST_F(QtSettingsStoreWriting, OneEventIsOneReplacement) {
    const auto store = Open();
    store->Save("Signal Generator", "Memory Signal Start 9", "1");
    store->Save("Settings", "Auto", "1");
    store->Write();
    FileWatch watch(File());
    QTimer::singleShot(0, store.get() != nullptr ? QCoreApplication::instance() : nullptr, [&] {
        store->Save("Settings", "Auto", "0");
        store->DeleteSection("Signal Generator");
        for (int i = 0; i < 200; ++i)
            store->Save("Signal Generator", "Memory Signal Start " + std::to_string(i), "x");
        EXPECT_EQ(watch.Replacements(), 0);
    });
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    EXPECT_EQ(watch.Replacements(), 1);
    EXPECT_EQ(watch.OtherChanges(), 0);
    EXPECT_EQ(Stored("Settings", "Auto"), "0");
    EXPECT_EQ(Stored("Signal Generator", "Memory Signal Start 199"), "x");
    EXPECT_EQ(watch.Replacements(), 1);
}

TEST_F(QtSettingsStoreWriting, EveryEventIsWrittenWhenItEnds) {
    const auto store = Open();
    for (int i = 0; i < 3; ++i) {
        store->Save("Settings", "Auto", std::to_string(i));
        QCoreApplication::processEvents();
        EXPECT_EQ(Stored("Settings", "Auto"), std::to_string(i));
    }
}

TEST_F(QtSettingsStoreWriting, TheEndOfTheStoreWritesTheRest) {
    Open()->Save("Windows", "LastTab", "1");
    EXPECT_EQ(Stored("Windows", "LastTab"), "1");
}

TEST_F(QtSettingsStoreWriting, WhatTheFileHoldsAlreadyIsNotWrittenAgain) {
    const auto store = Open();
    store->Save("Settings", "Auto", "1");
    EXPECT_TRUE(store->Write());
    FileWatch watch(File());
    store->Save("Settings", "Auto", "1");
    store->DeleteSection("never there");
    EXPECT_TRUE(store->Write());
    EXPECT_EQ(watch.Replacements(), 0);
    store->Save("Settings", "Auto", "0");
    EXPECT_TRUE(store->Write());
    EXPECT_EQ(watch.Replacements(), 1);
}

TEST_F(QtSettingsStoreWriting, NothingIsWrittenWhileHeld) {
    const auto store = Open();
    {
        const QtSettingsStore::HoldWrites outer(*store);
        {
            const QtSettingsStore::HoldWrites inner(*store);
            store->Save("Signal Generator", "Level", "-50");
        }
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        EXPECT_FALSE(std::filesystem::exists(File()));
        EXPECT_EQ(store->Get("Signal Generator", "Level", "none"), "-50");
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(Stored("Signal Generator", "Level"), "-50");
}

TEST_F(QtSettingsStoreWriting, DiscardedChangesAreNeverWritten) {
    {
        const auto store = Open();
        store->Save("Signal Generator", "Level", "-50");
        store->Write();
        const QtSettingsStore::HoldWrites hold(*store);
        store->Save("Signal Generator", "Level", "-60");
        store->DeleteSection("Settings");
        store->DiscardChanges();
        EXPECT_EQ(store->Get("Signal Generator", "Level", "none"), "-50");
    }
    EXPECT_EQ(Stored("Signal Generator", "Level"), "-50");
}

TEST_F(QtSettingsStoreWriting, OnlyTheUserMayReadTheFile) {
    const auto modeOf = [](const std::filesystem::path& path) {
        struct stat status = {};
        stat(path.c_str(), &status);
        return status.st_mode & 0777U;
    };
    const mode_t mask = umask(0);
    const auto file = folder_.Path() / "new" / "deep" / "Sonavex.ini";
    Open(file)->Save("Settings", "Auto", "1");
    umask(mask);
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(file.parent_path()), 0700U);
    chmod(file.c_str(), 0644);
    Open(file)->Save("Settings", "Auto", "0");
    EXPECT_EQ(modeOf(file), 0600U);
}

TEST_F(QtSettingsStoreWriting, ALinkToTheFileStaysALink) {
    const auto target = folder_.Path() / "elsewhere.ini";
    WriteFile(target, "[Settings]\nAuto=1\n");
    std::filesystem::create_symlink(target, File());
    Open()->Save("Settings", "Baseline", "1");
    EXPECT_TRUE(std::filesystem::is_symlink(File()));
    EXPECT_EQ(Stored("Settings", "Auto"), "1");
    EXPECT_EQ(Stored("Settings", "Baseline"), "1");
    EXPECT_NE(FileText(target).find("Baseline=1"), std::string::npos);
}

TEST_F(QtSettingsStoreWriting, LeavesNothingElseInTheFolder) {
    Open()->Save("Settings", "Auto", "1");
    Open()->Save("Settings", "Auto", "0");
    EXPECT_THAT(FilesInFolder(), ElementsAre("Sonavex.ini"));
}

TEST_F(QtSettingsStoreWriting, TheDefaultFileIsInTheConfigurationFolder) {
    const char* const present = getenv("XDG_CONFIG_HOME");
    const std::string before = present != nullptr ? present : "";
    setenv("XDG_CONFIG_HOME", folder_.Path().c_str(), 1);
    EXPECT_EQ(QtSettingsStore::DefaultFile(), folder_.Path() / "Sonavex" / "Sonavex.ini");
    EXPECT_EQ(QtSettingsStore().Location(), (folder_.Path() / "Sonavex" / "Sonavex.ini").string());
    if (present != nullptr)
        setenv("XDG_CONFIG_HOME", before.c_str(), 1);
    else
        unsetenv("XDG_CONFIG_HOME");
}

class QtSettingsStoreEditing : public SettingsRig {};

TEST_F(QtSettingsStoreEditing, ReadsWhatTheUserTyped) {
    WriteFile(File(),
              "; mine\n"
              "[Windows]\nfrmMain Left = 120\n"
              "[Signal Generator]\n"
              "Memory Signal Start 3=440, 441,442\n"
              "Current Signal Sweep Time=\" 1,5 \"\n"
              "Level = -50\n"
              "[SoundCard]\nInput=50% of @Invalid() \\ \xC3\xBC \"x\"\nOutput=\n");
    const auto store = Open();
    EXPECT_EQ(store->Get("Signal Generator", "Memory Signal Start 3", "none"), "440, 441,442");
    EXPECT_EQ(store->Get("Signal Generator", "Current Signal Sweep Time", "none"), " 1,5 ");
    EXPECT_EQ(store->Get("Signal Generator", "Level", "none"), "-50");
    EXPECT_EQ(store->Get("SoundCard", "Input", "none"), "50% of @Invalid() \\ \xC3\xBC \"x\"");
    EXPECT_EQ(store->Get("SoundCard", "Output", "none"), "");
    EXPECT_EQ(store->Get("Windows", "frmMain Left", "none"), "120");
}

TEST_F(QtSettingsStoreEditing, WhatTheUserTypedSurvivesAWriting) {
    WriteFile(File(),
              "[Signal Generator]\nMemory Signal Start 3=440, 441\n[Other program]\nx=\" y \"\nz=1;2\n");
    Open()->Save("Settings", "Auto", "1");
    EXPECT_EQ(Stored("Signal Generator", "Memory Signal Start 3"), "440, 441");
    EXPECT_EQ(Stored("Other program", "x"), " y ");
    EXPECT_EQ(Stored("Other program", "z"), "1;2");
    EXPECT_EQ(Stored("Settings", "Auto"), "1");
    EXPECT_TRUE(reports_.empty());
}

TEST_F(QtSettingsStoreEditing, AnEditDuringTheRunCountsAtOnce) {
    const auto store = Open();
    store->Save("Settings", "Auto", "1");
    store->Save("Settings", "Baseline", "1");
    store->Write();
    WriteFile(File(), "[Settings]\nAuto=0\n");
    EXPECT_EQ(store->Get("Settings", "Auto", "none"), "0");
    EXPECT_EQ(store->Get("Settings", "Baseline", "none"), "none");
    std::filesystem::remove(File());
    EXPECT_EQ(store->Get("Settings", "Auto", "none"), "none");
}

TEST_F(QtSettingsStoreEditing, TheLastWriterOfAValueWins) {
    const auto first = Open();
    const auto second = Open();
    first->Save("Settings", "Auto", "first");
    first->Save("Settings", "Baseline", "first");
    second->Save("Settings", "Auto", "second");
    second->Save("Windows", "LastTab", "second");
    EXPECT_EQ(first->Get("Settings", "Auto", "none"), "first");
    first->Write();
    EXPECT_EQ(second->Get("Settings", "Auto", "none"), "second");
    EXPECT_EQ(second->Get("Settings", "Baseline", "none"), "first");
    second->Write();
    for (const auto& store : {first.get(), second.get()}) {
        EXPECT_EQ(store->Get("Settings", "Auto", "none"), "second");
        EXPECT_EQ(store->Get("Settings", "Baseline", "none"), "first");
        EXPECT_EQ(store->Get("Windows", "LastTab", "none"), "second");
    }
}

TEST_F(QtSettingsStoreEditing, DeletingASectionAlsoDeletesWhatOthersPutThere) {
    const auto first = Open();
    const auto second = Open();
    second->Save("Signal Generator", "Memory Signal Start 7", "1");
    second->Save("Settings", "Auto", "1");
    first->DeleteSection("Signal Generator");
    second->Write();
    first->Write();
    EXPECT_EQ(Stored("Signal Generator", "Memory Signal Start 7"), "none");
    EXPECT_EQ(Stored("Settings", "Auto"), "1");
}

}  // namespace
}  // namespace sonavex
