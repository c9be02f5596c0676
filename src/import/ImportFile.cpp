#include "import/ImportFile.h"

#include <QFileInfo>
#include <QStringDecoder>

#include <cstring>

namespace {

constexpr qsizetype ChunkSize = 256 * 1024;

// What Windows puts at 0x80..0x9F in its Western European code page; the
// five codes it leaves unused keep their Latin-1 meaning.
constexpr char16_t Windows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

bool isAscii(QByteArrayView bytes)
{
    for (const char c : bytes)
        if (static_cast<unsigned char>(c) >= 0x80)
            return false;
    return true;
}

}  // namespace

ImportFile::ImportFile(const QString &path) : m_file(path) {}

bool ImportFile::open()
{
    if (QFileInfo(m_file).isDir()) {
        m_error = QStringLiteral("It is a folder, not a file.");
        return false;
    }
    return m_file.open(QIODevice::ReadOnly);
}

QString ImportFile::decode(QByteArrayView bytes)
{
    if (isAscii(bytes))
        return QString::fromLatin1(bytes);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    if (!utf8.hasError())
        return text;
    text.resize(bytes.size());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        text[i] = b >= 0x80 && b < 0xA0 ? QChar(Windows1252High[b - 0x80]) : QChar(b);
    }
    return text;
}

bool ImportFile::fill()
{
    if (m_atEnd)
        return false;
    if (m_pos > 0) {
        m_buffer.remove(0, m_pos);
        m_pos = 0;
    }
    const qsizetype had = m_buffer.size();
    m_buffer.resize(had + ChunkSize);
    const qint64 got = m_file.read(m_buffer.data() + had, ChunkSize);
    if (got < 0) {
        m_failed = true;
        m_atEnd = true;
        m_buffer.resize(had);
        return false;
    }
    m_buffer.resize(had + got);
    if (got == 0)
        m_atEnd = true;
    return got > 0;
}

void ImportFile::note(QByteArrayView bytes)
{
    m_tab = m_tab || bytes.contains('\t');
    m_comma = m_comma || bytes.contains(',');
    m_nul = m_nul || bytes.contains('\0');
}

bool ImportFile::read(QString *line)
{
    if (m_failed)
        return false;
    m_tab = m_comma = m_nul = false;
    bool cut = false;  // bytes beyond MaxLine were dropped
    qsizetype searched = m_pos;
    for (;;) {
        qsizetype end = -1;
        {
            const char *data = m_buffer.constData();
            for (qsizetype i = searched; i < m_buffer.size(); ++i) {
                if (data[i] == '\n' || data[i] == '\r') {
                    end = i;
                    break;
                }
            }
        }
        const qsizetype keep = m_pos + MaxLine;
        const qsizetype over = (end >= 0 ? end : m_buffer.size()) - keep;
        if (over > 0) {
            // The end of a very long line is only looked at, never kept.
            note(QByteArrayView(m_buffer.constData() + keep, over));
            m_buffer.remove(keep, over);
            cut = true;
            if (end >= 0)
                end = keep;
        }
        const bool crAtEdge = end >= 0 && m_buffer[end] == '\r' && end + 1 == m_buffer.size() && !m_atEnd;
        if ((end < 0 || crAtEdge) && !m_atEnd) {
            // Read on: the line goes on, or a line feed may follow the return.
            const qsizetype offset = (end >= 0 ? end : m_buffer.size()) - m_pos;
            fill();
            if (m_failed)
                return false;
            searched = m_pos + offset;
            continue;
        }
        const char *data = m_buffer.constData();
        qsizetype start = m_pos;
        const qsizetype stop = end >= 0 ? end : m_buffer.size();
        if (end < 0 && start == stop && !cut)
            return false;  // nothing after the last line end
        if (m_first) {
            m_first = false;
            if (stop - start >= 3 && std::memcmp(data + start, "\xEF\xBB\xBF", 3) == 0)
                start += 3;
        }
        const QByteArrayView bytes(data + start, stop - start);
        note(bytes);
        if (line)
            *line = decode(bytes);
        if (end < 0)
            m_pos = stop;
        else
            m_pos = end + ((data[end] == '\r' && end + 1 < m_buffer.size() && data[end + 1] == '\n') ? 2 : 1);
        return true;
    }
}

ImportScan scanImportFile(const QString &path, const std::function<void()> &tick)
{
    ImportScan scan;
    ImportFile file(path);
    if (!file.open()) {
        scan.error = file.errorString();
        return scan;
    }
    scan.opened = true;
    QString line;
    // Only the lines shown are made into texts.
    while (scan.lineTotal < 5 ? file.next(line) : file.skip()) {
        scan.tabSeen = scan.tabSeen || file.lineHadTab();
        scan.commaSeen = scan.commaSeen || file.lineHadComma();
        scan.nulSeen = scan.nulSeen || file.lineHadNul();
        ++scan.lineTotal;
        if (scan.lineTotal <= 5)
            scan.preview << line;
        if (tick && scan.lineTotal % 4096 == 0)
            tick();
    }
    if (file.failed())
        scan.error = file.errorString();
    return scan;
}
