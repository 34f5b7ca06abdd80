#include "platform/qt/SettingsFormat.h"

#include <QByteArray>
#include <QFile>
#include <QFileDevice>
#include <QSettings>
#include <QString>
#include <QVariant>
#include <system_error>

namespace sonavex {
namespace {

constexpr QFile::Permissions kOwnerOnly = QFile::ReadOwner | QFile::WriteOwner;

// Inside QSettings, values are bytes in QString's Latin-1 range, and names are percent-encoded, because
// QSettings interprets some characters. The first letter allows for empty names.
QString EncodeName(char first, const std::string& name) {
    return QLatin1String(first + QByteArray::fromStdString(name).toPercentEncoding());
}

std::string DecodeName(const QString& name) {
    return QByteArray::fromPercentEncoding(name.mid(1).toLatin1()).toStdString();
}

QString EncodeKey(const std::string& section, const std::string& key) {
    return EncodeName('s', section) + u'/' + EncodeName('k', key);
}

// QSettings needs no values of the existing file, only the fact that it is not empty.
bool ReadFormat(QIODevice&, QSettings::SettingsMap& map) {
    map.insert(QStringLiteral("present"), QVariant());
    return true;
}

bool WriteFormat(QIODevice& device, const QSettings::SettingsMap& map) {
    IniSections sections;
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        const auto slash = entry.key().indexOf(u'/');
        if (slash < 0) continue;
        sections[DecodeName(entry.key().left(slash))][DecodeName(entry.key().mid(slash + 1))] =
            entry.value().toString().toLatin1().toStdString();
    }
    const QByteArray text = QByteArray::fromStdString(WriteIni(sections));
    auto* const file = qobject_cast<QFileDevice*>(&device);
    if (file != nullptr && !file->setPermissions(kOwnerOnly)) return false;
    // Without flush, a failure on a full disk would go unnoticed when the file is closed.
    return device.write(text) == text.size() && (file == nullptr || file->flush());
}

// QSettings creates a missing file by one rename. To replace an existing file, it would use another temporary
// file with a random name.
std::filesystem::path NewFileBeside(const std::filesystem::path& file) {
    return file.string() + ".new";
}

QSettings::Format Format() {
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("sonavex"), ReadFormat, WriteFormat, Qt::CaseSensitive);
    return format;
}

bool Write(const std::filesystem::path& file, const IniSections& sections) {
    QSettings settings(QFile::decodeName(file.c_str()), Format());
    settings.clear();
    // Makes QSettings write even when there is no value. WriteFormat leaves this entry out.
    settings.setValue(QStringLiteral("present"), true);
    for (const auto& [section, values] : sections)
        for (const auto& [key, value] : values)
            settings.setValue(EncodeKey(section, key), QString::fromLatin1(QByteArray::fromStdString(value)));
    settings.sync();
    return settings.status() == QSettings::NoError;
}

}  // namespace

bool ReplaceIniFile(const std::filesystem::path& file, const IniSections& sections) {
    std::error_code error;
    const auto target = std::filesystem::weakly_canonical(file, error);
    if (error) return false;
    const auto next = NewFileBeside(target);
    // Removes what a killed process left. QSettings would respect its lock for 30 s.
    std::filesystem::remove(next, error);
    std::filesystem::remove(next.string() + ".lock", error);
    if (!Write(next, sections)) return false;
    std::filesystem::rename(next, target, error);
    return !error;
}

void RemoveUnfinished(const std::filesystem::path& file) {
    std::error_code error;
    const auto target = std::filesystem::weakly_canonical(file, error);
    std::filesystem::remove(target.string() + ".lock", error);
    const std::string beginning = NewFileBeside(target).filename().string();
    for (const auto& entry : std::filesystem::directory_iterator(target.parent_path(), error))
        if (entry.path().filename().string().starts_with(beginning))
            std::filesystem::remove(entry.path(), error);
}

}  // namespace sonavex
