#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <thread>

#include "adapters/qt/HelperPrograms.h"
#include "adapters/qt/SettingsRig.h"
#include "platform/qt/QtDesktop.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// Sets or removes an environment variable during its lifetime.
class Variable {
public:
    Variable(const char* name, const std::optional<std::string>& value) : name_(name) {
        if (const char* const present = getenv(name)) before_ = present;
        Set(value);
    }
    ~Variable() { Set(before_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void Set(const std::optional<std::string>& value) {
        if (value)
            setenv(name_, value->c_str(), 1);
        else
            unsetenv(name_);
    }

    const char* name_;
    std::optional<std::string> before_;
};

class QtDesktopTest : public testing::Test {
protected:
    std::filesystem::path SettingsFolder() const { return config_.Path() / "Sonavex"; }
    std::filesystem::path Lock() const { return SettingsFolder() / "kept.lock"; }
    std::filesystem::path RuntimeLock() const { return folder_.Path() / "kept.lock"; }

    // The first of two instances is alone, and the second sees it.
    static void ExpectOnlyOne() {
        QtDesktop desktop("kept");
        EXPECT_FALSE(desktop.AnotherInstanceRunning());
        EXPECT_TRUE(QtDesktop("kept").AnotherInstanceRunning());
    }

    // Starts another process with this expected answer; it keeps running.
    std::unique_ptr<ChildProcess> Start(const std::string& expectedAnswer) {
        const auto output = folder_.Path() / ("output" + std::to_string(++started_));
        auto process = std::make_unique<ChildProcess>(InstanceProgram("kept"), Environment{}, output);
        const auto end = std::chrono::steady_clock::now() + 20s;
        while (FileText(output).find('\n') == std::string::npos && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(2ms);
        EXPECT_EQ(FileText(output), expectedAnswer + "\n");
        return process;
    }

    PrivateFolder folder_;
    PrivateFolder config_;
    Variable runtimeFolder_{"XDG_RUNTIME_DIR", folder_.Path().string()};
    Variable configuration_{"XDG_CONFIG_HOME", config_.Path().string()};
    int started_ = 0;
};

TEST_F(QtDesktopTest, TheFirstInstanceIsAloneAndTheNextIsNot) {
    QtDesktop desktop("kept");
    EXPECT_FALSE(desktop.AnotherInstanceRunning());
    EXPECT_FALSE(desktop.AnotherInstanceRunning());
    QtDesktop second("kept");
    EXPECT_TRUE(second.AnotherInstanceRunning());
    EXPECT_TRUE(QtDesktop("kept").AnotherInstanceRunning());
    EXPECT_FALSE(QtDesktop("different").AnotherInstanceRunning());
    EXPECT_FALSE(desktop.AnotherInstanceRunning());
    const auto process = Start("another");
}

TEST_F(QtDesktopTest, TheFirstCallDecides) {
    auto first = std::make_unique<QtDesktop>("kept");
    QtDesktop second("kept");
    EXPECT_FALSE(first->AnotherInstanceRunning());
    EXPECT_TRUE(second.AnotherInstanceRunning());
    first.reset();
    EXPECT_TRUE(second.AnotherInstanceRunning());
    EXPECT_FALSE(QtDesktop("kept").AnotherInstanceRunning());
}

TEST_F(QtDesktopTest, ARunThatWasKilledDoesNotCount) {
    for (int round = 0; round < 3; ++round) {
        const auto killed = Start("alone");
        EXPECT_TRUE(QtDesktop("kept").AnotherInstanceRunning());
        killed->Kill();
        EXPECT_EQ(killed->Status(), 128 + SIGKILL);
        EXPECT_TRUE(std::filesystem::exists(Lock()));
        EXPECT_FALSE(QtDesktop("kept").AnotherInstanceRunning());
    }
}

TEST_F(QtDesktopTest, AProgramThatAnInstanceStartedDoesNotCount) {
    std::unique_ptr<ChildProcess> sleeper;
    {
        QtDesktop desktop("kept");
        EXPECT_FALSE(desktop.AnotherInstanceRunning());
        sleeper = std::make_unique<ChildProcess>(Arguments{"sleep", "60"}, Environment{}, "/dev/null");
        EXPECT_FALSE(sleeper->WaitForEnd(100ms));
    }
    EXPECT_FALSE(QtDesktop("kept").AnotherInstanceRunning());
}

// The runtime folder of either is missing, or others can write to it.
TEST_F(QtDesktopTest, ASecondInstanceIsSeenWhateverTheRuntimeFoldersAre) {
    const auto shared = folder_.Path() / "shared";
    std::filesystem::create_directory(shared);
    std::filesystem::permissions(shared, std::filesystem::perms::all);
    const auto foreign = folder_.Path() / "foreign";
    std::filesystem::create_directory(foreign);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(foreign.c_str(), 1, 1), 0);
    }
    std::vector<std::optional<std::string>> folders{std::nullopt, "", "relative",
                                                    (folder_.Path() / "missing").string(), shared.string()};
    if (geteuid() == 0) folders.emplace_back(foreign.string());
    for (const auto& folder : folders) {
        const auto other = [&] { return Variable("XDG_RUNTIME_DIR", folder); };
        {
            const Variable runtime = other();
            ExpectOnlyOne();
        }
        QtDesktop desktop("kept");
        EXPECT_FALSE(desktop.AnotherInstanceRunning());
        const Variable runtime = other();
        EXPECT_TRUE(QtDesktop("kept").AnotherInstanceRunning());
    }
    EXPECT_TRUE(std::filesystem::exists(Lock()));
    EXPECT_EQ(std::filesystem::status(SettingsFolder()).permissions(), std::filesystem::perms::owner_all);
    EXPECT_FALSE(std::filesystem::exists(RuntimeLock()));
    EXPECT_TRUE(std::filesystem::is_empty(shared));
    EXPECT_TRUE(std::filesystem::is_empty(foreign));
}

// Systems with a private group for each user create folders that this group can write to.
TEST_F(QtDesktopTest, AFolderOfTheSettingsThatAGroupCanWriteToServes) {
    std::filesystem::create_directory(SettingsFolder());
    std::filesystem::permissions(SettingsFolder(), std::filesystem::perms::group_all,
                                 std::filesystem::perm_options::add);
    ExpectOnlyOne();
    EXPECT_TRUE(std::filesystem::exists(Lock()));
    EXPECT_FALSE(std::filesystem::exists(RuntimeLock()));
}

TEST_F(QtDesktopTest, WithoutAFolderOfTheSettingsTheRuntimeFolderServes) {
    WriteFile(folder_.Path() / "file", "");
    const Variable configuration("XDG_CONFIG_HOME", (folder_.Path() / "file").string());
    ExpectOnlyOne();
    EXPECT_TRUE(std::filesystem::exists(RuntimeLock()));
}

TEST_F(QtDesktopTest, WithoutAnyUsableFolderNoOtherInstanceIsSeen) {
    WriteFile(folder_.Path() / "file", "");
    const Variable runtime("XDG_RUNTIME_DIR", (folder_.Path() / "file").string());
    const Variable configuration("XDG_CONFIG_HOME", (folder_.Path() / "file").string());
    QtDesktop first("kept");
    EXPECT_FALSE(first.AnotherInstanceRunning());
    EXPECT_FALSE(QtDesktop("kept").AnotherInstanceRunning());
}

// The runtime folder is used instead.
TEST_F(QtDesktopTest, WhateverStandsInTheWayOfTheLockBlocksNothing) {
    std::filesystem::create_directory(SettingsFolder());
    const auto inTheWay = [&](const std::function<void()>& put) {
        std::filesystem::remove_all(Lock());
        std::filesystem::remove_all(RuntimeLock());
        put();
        ExpectOnlyOne();
        EXPECT_TRUE(std::filesystem::exists(RuntimeLock()));
    };
    inTheWay([&] { std::filesystem::create_directory(Lock()); });
    inTheWay([&] { ASSERT_EQ(mkfifo(Lock().c_str(), 0600), 0); });
    inTheWay([&] { std::filesystem::create_symlink(folder_.Path() / "precious", Lock()); });
    EXPECT_FALSE(std::filesystem::exists(folder_.Path() / "precious"));
    if (geteuid() == 0)
        inTheWay([&] {
            WriteFile(Lock(), "");
            ASSERT_EQ(chown(Lock().c_str(), 1, 1), 0);
        });
}

TEST_F(QtDesktopTest, TheGenerationCanBeSetFromOutside) {
    const auto generation = [](const std::optional<std::string>& value) {
        const Variable variable("SONAVEX_OS_MAJOR", value);
        return QtDesktop("kept").OsMajorVersion();
    };
    EXPECT_EQ(generation(std::nullopt), 10);
    EXPECT_EQ(generation("5"), 5);
    EXPECT_EQ(generation("6"), 6);
    EXPECT_EQ(generation("11"), 11);
    for (const char* const text : {"", "five", "5x", " 5", "5.1", "99999999999", "+5"})
        EXPECT_EQ(generation(text), 10) << text;
}

TEST_F(QtDesktopTest, TheApplicationFolderHoldsTheProgram) {
    const std::filesystem::path folder = QtDesktop("kept").ApplicationFolder();
    EXPECT_EQ(folder, std::filesystem::read_symlink("/proc/self/exe").parent_path());
    EXPECT_NE(folder.string().back(), '/');
}

}  // namespace
}  // namespace sonavex
