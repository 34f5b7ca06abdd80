// Processes killed while they write leave complete files, and nothing that blocks later writers.

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <map>
#include <thread>

#include "platform/plain/FileMixerJournal.h"
#include "platform/qt/QtSettingsStore.h"
#include "support/Files.h"
#include "support/Wait.h"
#include "system/safety/Account.h"
#include "system/safety/Amount.h"
#include "system/safety/Writers.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::AnyOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Gt;

constexpr auto kNextStart = 5s;

class KilledWriters : public testing::Test {
protected:
    // Kills the writer `microseconds` after its first complete write.
    void Kill(const Arguments& writer, unsigned long microseconds) {
        std::filesystem::remove(account_.Output());
        ChildProcess process(writer, account_.Variables(), account_.Output());
        ASSERT_TRUE(WaitUntil([&] { return FileText(account_.Output()).ends_with("writing\n"); }))
            << FileText(account_.Output());
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
        process.Kill();
        ASSERT_EQ(process.Status(), 128 + SIGKILL);
    }

    Account account_;
};

class KilledSettings : public KilledWriters {
protected:
    std::filesystem::path Folder() const { return account_.SettingsFolder(); }
    std::filesystem::path File() const { return account_.SettingsFile(); }

    // The complete set in the file; '?' if it is incomplete.
    char SetInFile(const IniSections& others) const {
        const std::string text = FileText(File());
        for (const char which : kSettingsSets) {
            IniSections whole = SettingsSet(which);
            whole.insert(others.begin(), others.end());
            if (text == WriteIni(whole)) return which;
        }
        return '?';
    }
    // The next run can read the set and write.
    void ExpectUsable(char which, const std::string& count) {
        std::vector<std::string> reports;
        const auto start = std::chrono::steady_clock::now();
        QtSettingsStore store(File(), [&](const std::string& report) { reports.push_back(report); });
        EXPECT_EQ(store.Get("Memory", "Value 7", "none"), SettingsSet(which)["Memory"]["Value 7"]);
        store.Save("Windows", "LastTab", count);
        EXPECT_TRUE(store.Write());
        EXPECT_LT(std::chrono::steady_clock::now() - start, kNextStart);
        EXPECT_THAT(reports, testing::IsEmpty());
    }
};

TEST_F(KilledSettings, AreTheOldOnesOrTheNewOnes) {
    Chance chance("settings");
    const unsigned long kills = Kills(150);
    IniSections others;
    std::map<char, unsigned long> seen;
    unsigned long withLeftovers = 0;
    for (unsigned long kill = 0; kill < kills && !HasFailure(); ++kill) {
        Kill(SettingsWriter(File()), chance.Below(25000));
        const char which = SetInFile(others);
        ++seen[which];
        ASSERT_THAT(which, AnyOf('A', 'B')) << "after " << kill << " kills: " << FileText(File());
        withLeftovers += NamesIn(Folder()).size() > 1 ? 1 : 0;
        others["Windows"]["LastTab"] = std::to_string(kill);
        ExpectUsable(which, std::to_string(kill));
        EXPECT_EQ(SetInFile(others), which);
        EXPECT_THAT(NamesIn(Folder()), ElementsAre("Sonavex.ini")) << "after " << kill << " kills";
    }
    std::cout << kills << " kills: " << seen['A'] << " left one set, " << seen['B'] << " the other, "
              << withLeftovers << " a lock or a file that was not finished\n";
    EXPECT_THAT(seen['A'], Gt(0U));
    EXPECT_THAT(seen['B'], Gt(0U));
}

TEST_F(KilledWriters, OfTheJournalLeaveTheOldOneOrTheNewOne) {
    Chance chance("journal");
    const unsigned long kills = Kills(100);
    const auto file = account_.Home() / "journal" / "levels";
    std::map<std::string, unsigned long> seen;
    for (unsigned long kill = 0; kill < kills && !HasFailure(); ++kill) {
        Kill(JournalWriter(file), chance.Below(6000));
        const std::string left = FileMixerJournal(file).Read();
        ASSERT_THAT(left, AnyOf(JournalText('A'), JournalText('B'))) << "after " << kill << " kills";
        ++seen[left];
        FileMixerJournal next(file);
        next.Write(left + "next\n");
        EXPECT_EQ(next.Read(), left + "next\n");
        next.Write(left);
        EXPECT_THAT(NamesIn(file.parent_path()), ElementsAre("levels")) << "after " << kill << " kills";
    }
    EXPECT_EQ(seen.size(), 2U);
}

TEST_F(KilledWriters, OfTheReportLeaveNoHalfFile) {
    Chance chance("report");
    const unsigned long kills = Kills(30);
    const auto file = account_.Documents() / "report.pdf";
    std::map<std::size_t, unsigned long> seen;
    for (unsigned long kill = 0; kill < kills && !HasFailure(); ++kill) {
        // On a slow or busy machine one report takes longer than 25 ms.
        Kill(ReportWriter(file), chance.Below(25000 * (1 + kill % 8)));
        const std::string left = FileText(file);
        EXPECT_THAT(left.substr(0, 5), "%PDF-");
        EXPECT_THAT(left, EndsWith("%%EOF\n"));
        ++seen[left.size()];
        // A process killed just before the rename leaves a complete report under the temporary name until the
        // next write.
        EXPECT_THAT(NamesIn(file.parent_path()),
                    AnyOf(ElementsAre("report.pdf"), ElementsAre(".report.pdf.new", "report.pdf")))
            << "after " << kill << " kills";
    }
    EXPECT_THAT(seen.size(), Gt(1U));
}

}  // namespace
}  // namespace sonavex
