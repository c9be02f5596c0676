#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <functional>

// A text file to import, read one line at a time so that its size does not
// matter. A line ends at a line feed, a carriage return, or both together
// (files from Windows); the last line needs no end. Each line is read as
// UTF-8; a line that is not valid UTF-8 is read as Western European
// (Latin-1, with the characters Windows puts at 0x80 to 0x9F). A byte
// order mark at the start is passed over. Of a line longer than MaxLine
// bytes only the start is kept, so that memory stays flat whatever the file.
class ImportFile {
public:
    static constexpr qsizetype MaxLine = 64 * 1024;

    explicit ImportFile(const QString &path);

    bool open();
    QString errorString() const { return m_error.isEmpty() ? m_file.errorString() : m_error; }

    // The next line without its end; false at the end of the file or when
    // reading failed (then failed() says so).
    bool next(QString &line) { return read(&line); }
    // The same without making a text of the line.
    bool skip() { return read(nullptr); }
    bool failed() const { return m_failed; }
    // What the line just read held, its cut end included.
    bool lineHadTab() const { return m_tab; }
    bool lineHadComma() const { return m_comma; }
    bool lineHadNul() const { return m_nul; }

    static QString decode(QByteArrayView bytes);

private:
    bool read(QString *line);
    bool fill();
    void note(QByteArrayView bytes);

    QFile m_file;
    QString m_error;
    QByteArray m_buffer;
    qsizetype m_pos = 0;
    bool m_atEnd = false;
    bool m_failed = false;
    bool m_first = true;
    bool m_tab = false, m_comma = false, m_nul = false;
};

// What the first step of the import learns from reading the file once.
struct ImportScan {
    bool opened = false;
    QString error;         // why it could not be opened or read
    qint64 lineTotal = 0;
    bool tabSeen = false;
    bool commaSeen = false;
    bool nulSeen = false;  // not a text file
    QStringList preview;   // the first five lines as they stand
};

// Reads the whole file; `tick` is called now and then so the window stays
// alive on a very large file.
ImportScan scanImportFile(const QString &path, const std::function<void()> &tick = {});
