#include <chrono>
#include <random>
#include <set>
#include <thread>

#include "adapters/qt/HelperPrograms.h"
#include "adapters/qt/SettingsRig.h"
#include "support/Wait.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

class QtSettingsStoreProcess : public SettingsRig {
protected:
    // The number in all keys of the rewritten section; -1 if they differ or some are missing, 0 if there is
    // none.
    int RewrittenNumber() {
        const IniReading reading = ReadIni(FileText(File()));
        EXPECT_FALSE(reading.damaged);
        const auto section = reading.sections.find("Signal Generator");
        if (section == reading.sections.end()) return 0;
        std::set<std::string> numbers;
        for (int i = 0; i < kRewrittenKeys; ++i) {
            const auto value = section->second.find(RewrittenKey(i));
            numbers.insert(value == section->second.end() ? "missing" : value->second);
        }
        return numbers.size() == 1 && numbers.count("missing") == 0 ? std::stoi(*numbers.begin()) : -1;
    }
};

TEST_F(QtSettingsStoreProcess, AWriterThatIsKilledLeavesTheOldFileOrTheNewOne) {
    constexpr int kKills = 40;
    std::mt19937 random(4711);
    WriteFile(File(), "[Settings]\nAuto=0\n");
    int last = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        ChildProcess writer(RewritingProgram(File()), {}, folder_.Path() / "output");
        ASSERT_TRUE(WaitUntil([&] { return RewrittenNumber() > last; }))
            << FileText(folder_.Path() / "output");
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 5000));
        writer.Kill();
        ASSERT_EQ(writer.Status(), 128 + SIGKILL);
        const int number = RewrittenNumber();
        EXPECT_GT(number, last);
        last = number;
        const auto start = std::chrono::steady_clock::now();
        const auto store = Open();
        store->Save("Windows", "LastTab", std::to_string(kill));
        EXPECT_TRUE(store->Write());
        EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
        EXPECT_EQ(RewrittenNumber(), number);
    }
    EXPECT_EQ(Stored("Settings", "Auto"), "0");
    EXPECT_EQ(Stored("Windows", "LastTab"), std::to_string(kKills - 1));
    EXPECT_TRUE(reports_.empty());
}

TEST_F(QtSettingsStoreProcess, ProcessesThatWriteAtTheSameTimeLoseNothing) {
    constexpr int kCount = 150;
    ChildProcess first(CountingProgram(File(), "first", kCount), {}, folder_.Path() / "output");
    ChildProcess second(CountingProgram(File(), "second", kCount), {}, folder_.Path() / "output");
    const auto store = Open();
    int seen = 0;
    for (int i = 1; i <= kCount; ++i) {
        store->Save("Counter", "third", std::to_string(i));
        EXPECT_TRUE(store->Write());
        const int other = std::stoi(store->Get("Counter", "first", "0"));
        EXPECT_GE(other, seen);
        seen = other;
        std::this_thread::sleep_for(1ms);
    }
    ASSERT_TRUE(first.WaitForEnd(60s));
    ASSERT_TRUE(second.WaitForEnd(60s));
    EXPECT_EQ(first.Status(), 0) << FileText(folder_.Path() / "output");
    EXPECT_EQ(second.Status(), 0);
    for (const std::string key : {"first", "second", "third"})
        EXPECT_EQ(store->Get("Counter", key, "none"), std::to_string(kCount)) << key;
    EXPECT_TRUE(reports_.empty());
}

}  // namespace
}  // namespace sonavex
