#include "platform/qt/SettingsFormat.h"

#include <QByteArray>
#include <QFile>
#include <QFileDevice>
#include <QSettings>
#include <QString>
#include <QVariant>

namespace sonavex {
namespace {

constexpr QFile::Permissions kOwnerOnly = QFile::ReadOwner | QFile::WriteOwner;

// In between, texts are bytes in the lower half of QString, and names are encoded to letters that the
// settings class has no use of its own for. The first letter makes empty names possible.
QString EncodeName(char first, const std::string& name) {
    return QLatin1String(first + QByteArray::fromStdString(name).toPercentEncoding());
}

std::string DecodeName(const QString& name) {
    return QByteArray::fromPercentEncoding(name.mid(1).toLatin1()).toStdString();
}

QString EncodeKey(const std::string& section, const std::string& key) {
    return EncodeName('s', section) + u'/' + EncodeName('k', key);
}

// The settings class need not know what the file holds, only that it holds something.
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
    return device.write(text) == text.size();
}

QSettings::Format Format() {
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("sonavex"), ReadFormat, WriteFormat, Qt::CaseSensitive);
    return format;
}

}  // namespace

bool ReplaceIniFile(const std::filesystem::path& file, const IniSections& sections) {
    QSettings settings(QFile::decodeName(file.c_str()), Format());
    // Drops what it takes for the present content, so that the file is written even when nothing is left.
    settings.clear();
    for (const auto& [section, values] : sections)
        for (const auto& [key, value] : values)
            settings.setValue(EncodeKey(section, key), QString::fromLatin1(QByteArray::fromStdString(value)));
    settings.sync();
    return settings.status() == QSettings::NoError;
}

}  // namespace sonavex
