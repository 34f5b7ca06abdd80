#include "system/safety/Writers.h"

#include <unistd.h>

#include <QGuiApplication>
#include <deque>
#include <iostream>

#include "core/history/LoadHistory.h"
#include "platform/plain/FileMixerJournal.h"
#include "platform/plain/HistoryFolder.h"
#include "platform/qt/QtPrinter.h"
#include "platform/qt/QtSettingsStore.h"
#include "support/Files.h"

namespace sonavex {
namespace {

constexpr const char* kSettings = "--write-settings";
constexpr const char* kJournal = "--write-journal";
constexpr const char* kReportCommand = "--write-report";
constexpr const char* kHistoryCommand = "--write-history";
constexpr int kUnwritten = 3;

constexpr int kKeys = 150;         // per section
constexpr int kLongValue = 12000;  // bytes
constexpr int kJournalLines = 900;

char Other(char which) {
    return which == 'A' ? 'B' : 'A';
}

void SayWriting() {
    static bool said = false;
    if (!said) std::cout << "writing" << std::endl;
    said = true;
}

int WriteSettings(const std::filesystem::path& file) {
    QtSettingsStore store(file);
    const char first = store.Get("Settings", "Only A", "").empty() ? 'A' : 'B';
    for (char which = first;; which = Other(which)) {
        for (const auto& [section, values] : SettingsSet(which)) {
            store.DeleteSection(section);
            for (const auto& [key, value] : values) store.Save(section, key, value);
        }
        if (!store.Write()) return kUnwritten;
        SayWriting();
    }
}

int WriteJournal(const std::filesystem::path& file) {
    FileMixerJournal journal(file);
    const char first = journal.Read() == JournalText('A') ? 'B' : 'A';
    for (char which = first;; which = Other(which)) {
        journal.Write(JournalText(which));
        SayWriting();
    }
}

// The two reports differ in length.
void PrintTo(QtPrinter& printer, const std::filesystem::path& file, char which) {
    const PageSetUp page;
    printer.Select({"", file.string()});
    printer.BeginPage(page);
    for (int line = 0; line < 20 * (which - '@'); ++line)
        printer.Text(1.0, 1.0 + 0.2 * line, std::string(static_cast<std::size_t>(20 + line % 30), which));
    printer.EndDoc();
}

int WriteReports(const std::filesystem::path& file) {
    Ending ending;
    QtPrinter printer(ending);
    for (char which = 'A';; which = Other(which)) {
        PrintTo(printer, file, which);
        SayWriting();
    }
}

constexpr const char* kWrittenDay = "2026-11-23";

void Say(const char* word, const std::string& id) {
    std::cout << word << ' ' << id << std::endl;
}

void DeleteEntry(HistoryFolder& files, const std::string& id) {
    Say("deleting", id);
    files.Append(kWrittenDay, DeletionLine(id));
    Say("deleted", id);
}

int WriteHistory(const std::filesystem::path& folder) {
    constexpr std::size_t kKeptEntries = 4;
    HistoryFolder files(folder);
    std::deque<std::string> ids;
    for (const HistoryEntry& entry : LoadAndCompactHistory(files).entries) ids.push_back(entry.id);
    for (unsigned long number = 0;; ++number) {
        const std::string id = std::to_string(getpid()) + '-' + std::to_string(number);
        files.Append(kWrittenDay, EntryLine(WrittenEntry(id), kWrittenDetails, WrittenCurve()));
        Say("stored", id);
        for (ids.push_back(id); ids.size() > kKeptEntries; ids.pop_front()) DeleteEntry(files, ids.front());
        if (number % 16 == 0) files.Sync(kWrittenDay);
    }
}

Arguments Command(const char* command, const std::filesystem::path& file) {
    return {ThisProgram(), command, file.string()};
}

}  // namespace

IniSections SettingsSet(char which) {
    IniSections sections;
    for (const char* const section : {"Settings", "Signal Generator", "Memory"})
        for (int key = 0; key < kKeys; ++key)
            sections[section]["Value " + std::to_string(key)] = which + std::to_string(key * (which - '@'));
    for (const char* const key : {"First", "Second", "Third", "Fourth"})
        sections["Long"][key] = std::string(which == 'A' ? kLongValue : kLongValue / 2, which);
    // Each set has keys that the other lacks.
    sections["Settings"][std::string("Only ") + which] = "1";
    return sections;
}

std::string JournalText(char which) {
    std::string text = "playback\tcard ";
    text += which;
    text += '\n';
    for (int line = 0; line < kJournalLines * (which - '@'); ++line)
        text += which + std::to_string(line) + " 20123 40111\n";
    return text + '\n';
}

Arguments SettingsWriter(const std::filesystem::path& file) {
    return Command(kSettings, file);
}

Arguments JournalWriter(const std::filesystem::path& file) {
    return Command(kJournal, file);
}

Arguments ReportWriter(const std::filesystem::path& file) {
    return Command(kReportCommand, file);
}

Arguments HistoryWriter(const std::filesystem::path& folder) {
    return Command(kHistoryCommand, folder);
}

HistoryEntry WrittenEntry(const std::string& id) {
    HistoryEntry entry;
    entry.id = id;
    entry.time = "2026-11-23 10:58:21";
    entry.input = "Line In of " + id;
    return entry;
}

HistoryCurve WrittenCurve() {
    HistoryCurve curve;
    for (std::size_t i = 0; i < HistoryCurve::kMostColumns; ++i)
        curve.levelsDbfs.push_back(-0.25 * static_cast<double>(i));
    return curve;
}

std::optional<int> RunWriter(int argc, char** argv) {
    if (argc != 3) return std::nullopt;
    const std::string command = argv[1];
    if (command == kJournal) return WriteJournal(argv[2]);
    if (command == kHistoryCommand) return WriteHistory(argv[2]);
    if (command == kSettings) {
        const QCoreApplication application(argc, argv);
        return WriteSettings(argv[2]);
    }
    if (command != kReportCommand) return std::nullopt;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return WriteReports(argv[2]);
}

}  // namespace sonavex
