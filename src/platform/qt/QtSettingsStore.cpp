#include "platform/qt/QtSettingsStore.h"

#include <QCoreApplication>
#include <QFile>
#include <QStandardPaths>
#include <chrono>
#include <system_error>
#include <utility>

#include "platform/plain/UserFolders.h"
#include "platform/qt/SettingsFormat.h"

namespace sonavex {
namespace {

// Longest wait for another process that writes the file. A write takes some milliseconds; only a process that
// was stopped in the middle of one takes longer.
constexpr std::chrono::milliseconds kLongestWait{2000};

const std::string* Find(const IniSections& sections, std::string_view section, std::string_view key) {
    const auto values = sections.find(section);
    if (values == sections.end()) return nullptr;
    const auto value = values->second.find(key);
    return value == values->second.end() ? nullptr : &value->second;
}

}  // namespace

QtSettingsStore::QtSettingsStore(const std::filesystem::path& file, Report report)
    : file_(std::filesystem::absolute(file)), report_(std::move(report)) {
    writing_.setSingleShot(true);
    writing_.setInterval(0);
    QObject::connect(&writing_, &QTimer::timeout, &writing_, [this] {
        if (holds_ == 0) Write();
    });
    Take(ReadSettingsFile(file_));
}

QtSettingsStore::~QtSettingsStore() {
    Write();
}

std::filesystem::path QtSettingsStore::DefaultFile() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::filesystem::path(QFile::encodeName(folder).toStdString()) / "Sonavex" / "Sonavex.ini";
}

std::string QtSettingsStore::Get(std::string_view section, std::string_view key,
                                 std::string_view fallback) const {
    const std::string* value = Find(changes_.saved, section, key);
    if (value == nullptr && !changes_.deleted.contains(section)) {
        Refresh();
        value = Find(known_, section, key);
    }
    return value == nullptr ? std::string(fallback) : *value;
}

void QtSettingsStore::Save(std::string_view section, std::string_view key, std::string_view value) {
    changes_.saved[std::string(section)][std::string(key)] = value;
    WriteSoon();
}

void QtSettingsStore::DeleteSection(std::string_view section) {
    const auto saved = changes_.saved.find(section);
    if (saved != changes_.saved.end()) changes_.saved.erase(saved);
    changes_.deleted.emplace(section);
    WriteSoon();
}

void QtSettingsStore::DiscardChanges() {
    writing_.stop();
    changes_ = {};
}

void QtSettingsStore::WriteSoon() {
    if (QCoreApplication::instance() != nullptr)
        writing_.start();
    else if (holds_ == 0)
        Write();
}

QtSettingsStore::HoldWrites::~HoldWrites() {
    if (--store_.holds_ == 0 && !store_.changes_.Empty()) store_.WriteSoon();
}

bool QtSettingsStore::Write() {
    writing_.stop();
    if (changes_.Empty()) return true;
    const std::string problem = Replace();
    ReportDamage();
    ReportFailure(problem);
    return problem.empty();
}

void QtSettingsStore::Refresh() const {
    if (!(FileStamp::Of(file_) == stamp_)) Take(ReadSettingsFile(file_));
}

void QtSettingsStore::Take(const FileReading& reading) const {
    stamp_ = reading.stamp;
    // The known values are better than those of a file that is damaged or cannot be read.
    if (!reading.problem.empty()) return;
    if (reading.content.damaged && reading.content.sections.empty()) return;
    known_ = reading.content.sections;
}

void QtSettingsStore::Changes::ApplyTo(IniSections& sections) const {
    for (const std::string& section : deleted) sections.erase(section);
    for (const auto& [section, values] : saved)
        for (const auto& [key, value] : values) sections[section][key] = value;
}

std::string QtSettingsStore::CreateFolder() const {
    const std::error_code error = CreatePrivateFolder(file_.parent_path());
    return error ? error.message() : std::string();
}

bool QtSettingsStore::KeepDamaged(const FileReading& reading) {
    // An earlier write that failed has copied it already.
    if (!copy_.empty() && reading.stamp == copied_) return true;
    copy_ = KeepAside(file_);
    copied_ = FileStamp::Of(file_);
    return !copy_.empty();
}

// Returns the reason of a failure, empty for success.
std::string QtSettingsStore::Replace() {
    if (auto problem = CreateFolder(); !problem.empty()) return problem;
    const FolderLock lock(file_.parent_path(), patient_ ? kLongestWait : std::chrono::milliseconds::zero());
    patient_ = lock.Held();
    const FileReading reading = ReadSettingsFile(file_);
    if (!reading.problem.empty()) return reading.problem;
    if (reading.content.damaged && !KeepDamaged(reading))
        return "the present file is damaged and could not be kept under another name";
    Take(reading);
    IniSections wanted = known_;
    changes_.ApplyTo(wanted);
    if (reading.content.damaged || wanted != known_) {
        if (lock.Held()) RemoveUnfinished(file_);
        if (!ReplaceIniFile(file_, wanted)) return WhyNotWritable(file_);
        stamp_ = FileStamp::Of(file_);
        known_ = std::move(wanted);
    }
    changes_ = {};
    return {};
}

void QtSettingsStore::ReportDamage() {
    if (copy_.empty() || std::exchange(damageReported_, true) || !report_) return;
    report_("The settings file " + file_.string() + " is damaged. It was kept as " + copy_.string() +
            "; what could not be read of it has its default value.");
}

void QtSettingsStore::ReportFailure(const std::string& problem) {
    if (problem.empty() || std::exchange(failureReported_, true) || !report_) return;
    report_("The settings cannot be stored in " + file_.string() + ": " + problem +
            ". Changes stay in effect until the program ends.");
}

}  // namespace sonavex
