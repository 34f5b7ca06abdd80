#pragma once

#include <QTimer>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "core/ports/SettingsStore.h"
#include "platform/plain/IniText.h"
#include "platform/plain/SettingsFile.h"

namespace sonavex {

// The user's settings in a text file of the form that IniText describes.
//
// What is saved or deleted is visible at once and is written in one replacement of the file when control
// returns to the event loop, at the latest when the store is destroyed. Without an application object
// every call writes. A replacement puts the changes of this run, value by value, on top of what the file
// holds at that moment: values that others wrote meanwhile are kept, and the last writer of a value wins.
// Reading looks at the file again whenever it has changed.
//
// When the file cannot be written, that is reported once; the changes stay in effect for the run and every
// later writing tries again. A file that is damaged is kept under another name before it is replaced, which
// is reported once too; a file that exists but cannot be read is never replaced. Another
// process that writes is waited for, for at most two seconds; then, and until it has ended its writing, this
// one writes without regard to it.
class QtSettingsStore : public SettingsStore {
public:
    // Gets one sentence or two for the user, at the end of a writing; may run an event loop, must not throw.
    using Report = std::function<void(const std::string&)>;

    explicit QtSettingsStore(const std::filesystem::path& file = DefaultFile(), Report report = {});
    ~QtSettingsStore() override;
    QtSettingsStore(const QtSettingsStore&) = delete;
    QtSettingsStore& operator=(const QtSettingsStore&) = delete;

    // Sonavex/Sonavex.ini in the user's configuration folder.
    static std::filesystem::path DefaultFile();

    std::string Get(std::string_view section, std::string_view key, std::string_view fallback) const override;
    void Save(std::string_view section, std::string_view key, std::string_view value) override;
    void DeleteSection(std::string_view section) override;
    std::string Location() const override { return file_.string(); }

    // Writes what is not written yet, now; false when something stays unwritten.
    bool Write();

    // While one lives, nothing is written except by Write: for a start that may still fail. The changes are
    // written when control returns to the event loop afterwards. They must not outlive the store.
    class HoldWrites {
    public:
        explicit HoldWrites(QtSettingsStore& store) noexcept : store_(store) { ++store_.holds_; }
        ~HoldWrites();
        HoldWrites(const HoldWrites&) = delete;
        HoldWrites& operator=(const HoldWrites&) = delete;

    private:
        QtSettingsStore& store_;
    };
    // Forgets what is not written yet.
    void DiscardChanges();

private:
    // What this run did to the settings and did not write yet: first the deletions, then the values.
    struct Changes {
        std::set<std::string, std::less<>> deleted;
        IniSections saved;

        bool Empty() const noexcept { return deleted.empty() && saved.empty(); }
        void ApplyTo(IniSections& sections) const;
    };

    void WriteSoon();
    void Refresh() const;
    void Take(const FileReading& reading) const;
    std::string CreateFolder() const;
    bool KeepDamaged(const FileReading& reading);
    std::string Replace();
    void ReportDamage();
    void ReportFailure(const std::string& problem);

    std::filesystem::path file_;
    Report report_;
    Changes changes_;
    QTimer writing_;
    int holds_ = 0;
    bool patient_ = true;  // waits for other processes
    bool failureReported_ = false;
    bool damageReported_ = false;
    std::filesystem::path copy_;  // of the damaged file, kept by this run
    FileStamp copied_;            // the state of the file that it shows
    // The file as it was read last.
    mutable FileStamp stamp_;
    mutable IniSections known_;
};

}  // namespace sonavex
