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

// The user's settings in a text file with the format of IniText.
//
// Changes are visible at once. They are written in one atomic replacement of the file when control returns
// to the event loop, at the latest when the store is destroyed. Without an application object every call
// writes. Each write merges the changes of this run, value by value, into the present content of the file:
// values that other processes wrote are kept, and the last writer of a value wins. Get reads the file again
// when it has changed.
//
// When the file cannot be written, that is reported once. The changes stay in effect for the run, and each
// later write tries again. A damaged file is copied to another name before it is replaced; that is reported
// once too. A file that exists and cannot be read is never replaced. A write waits at most two seconds for
// another process that is writing. After such a timeout, writes do not wait until the lock is free again.
class QtSettingsStore : public SettingsStore {
public:
    // Receives one or two sentences for the user at the end of a write. May run an event loop; must not
    // throw.
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

    // Writes all changes now. False when that failed.
    bool Write();

    // While one exists, only Write writes: for a start that may still fail. Afterwards the changes are
    // written when control returns to the event loop. The store must outlive it.
    class HoldWrites {
    public:
        explicit HoldWrites(QtSettingsStore& store) noexcept : store_(store) { ++store_.holds_; }
        ~HoldWrites();
        HoldWrites(const HoldWrites&) = delete;
        HoldWrites& operator=(const HoldWrites&) = delete;

    private:
        QtSettingsStore& store_;
    };
    // Drops the changes that are not written yet.
    void DiscardChanges();

private:
    // Unwritten changes of this run. The deletions are applied before the values.
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
    bool patient_ = true;  // waits for other processes that write
    bool failureReported_ = false;
    bool damageReported_ = false;
    std::filesystem::path copy_;  // this run's copy of the damaged file
    FileStamp copied_;            // stamp of the file when it was copied
    // The file when it was read last.
    mutable FileStamp stamp_;
    mutable IniSections known_;
};

}  // namespace sonavex
