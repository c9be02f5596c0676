#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// Reads and writes one key of a classic initialisation file, the way the user
// programs read the same files: section and key names are blind to case, a
// value keeps at most 199 characters (the readers use a 200-character buffer),
// other lines of the file are left as they are.
namespace IniFile {

// True when the file exists and can be opened for reading.
bool exists(const QString &localPath);

// The value of section/key, or `def` when the file, section or key is missing.
QString readKey(const QString &localPath, const QString &section, const QString &key,
                const QString &def = QString());

// All keys of a section in file order, with their values.
QList<std::pair<QString, QString>> readSection(const QString &localPath, const QString &section);

// Writes section/key = value, creating the file or the section if needed.
// Returns false when the file cannot be written.
bool writeKey(const QString &localPath, const QString &section, const QString &key,
              const QString &value);

constexpr int MaxValueLength = 199;

}  // namespace IniFile
