#include "platform_qt/qt_settings_store.h"

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace zolt {

namespace {

QString toQt(const std::string& s) {
    return QString::fromUtf8(s.data(), qsizetype(s.size()));
}

}  // namespace

QtSettingsStore::QtSettingsStore() : settings_(std::make_unique<QSettings>("Ostrivo", "Zolt")) {}

QtSettingsStore::QtSettingsStore(const std::string& iniPath)
    : settings_(std::make_unique<QSettings>(toQt(iniPath), QSettings::IniFormat)) {}

QtSettingsStore::~QtSettingsStore() = default;

bool QtSettingsStore::empty() const {
    return settings_->allKeys().isEmpty();
}

std::optional<SettingValue> QtSettingsStore::read(const std::string& fullName) const {
    const QVariant v = settings_->value(toQt(fullName));
    if (!v.isValid()) return std::nullopt;
    SettingValue out;
    switch (v.typeId()) {
        case QMetaType::QByteArray: {
            const QByteArray b = v.toByteArray();
            out.kind = SettingKind::Bytes;
            out.data.assign(b.constData(), size_t(b.size()));
            break;
        }
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::UInt:
        case QMetaType::ULongLong:
            out.kind = SettingKind::Integer;
            out.integer = v.toLongLong();
            break;
        default: {
            // Ini files keep no types: integers come back as texts, which the base class
            // converts when an integer is asked for.
            const QByteArray u = v.toString().toUtf8();
            out.kind = SettingKind::Text;
            out.data.assign(u.constData(), size_t(u.size()));
            break;
        }
    }
    return out;
}

void QtSettingsStore::write(const std::string& fullName, const SettingValue& value) {
    switch (value.kind) {
        case SettingKind::Integer:
            settings_->setValue(toQt(fullName), qlonglong(value.integer));
            break;
        case SettingKind::Text:
            settings_->setValue(toQt(fullName), toQt(value.data));
            break;
        case SettingKind::Bytes:
            settings_->setValue(toQt(fullName),
                                QByteArray(value.data.data(), qsizetype(value.data.size())));
            break;
    }
}

void QtSettingsStore::erase(const std::string& fullName) {
    settings_->remove(toQt(fullName));
}

}  // namespace zolt
