// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Text files by lines, for the lists that users keep and the scripts that the host reads. The host reads
// narrow text, so that is what is written unless asked otherwise, and a character that the encoding lacks
// becomes "#", which no drawing's path holds by chance: a wrong path shows at once.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <QString>
#include <QStringView>

class CStdioFileEx {
  public:
    /// Flags of Open, to be combined.
    enum OpenFlags : std::uint32_t {
        modeRead = 0,
        modeWrite = 1,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,
        typeBinary = 0x8000,
        /// Write UTF-16 little-endian with a mark.
        WriteWideFlag = 0x20000,
    };

    /// The file being read begins with the UTF-16 little-endian mark.
    bool WideFile = false;
    /// The flags of the last Open, as changed by it.
    std::uint32_t FileFlags = 0;
    /// Code page of narrow text; -1 and 0 are the locale's encoding.
    int TextPage = -1;

    /// With typeText and no writing, a UTF-16 mark makes the lines wide. False, with the system's message in
    /// error when asked for, when the file cannot be opened.
    bool Open(const QString& path, std::uint32_t flags, QString* error = nullptr);
    /// The next line without its line end (CR LF, LF or CR). A narrow line of more than 4,095 bytes comes in
    /// pieces. False at the end of the file, with line unchanged.
    bool ReadString(QString& line);
    /// Writes text. Narrow text gets CR LF for each LF that has no CR yet, unless typeBinary was given; wide
    /// text goes out as it is. False when the system refuses; Error() then has the cause.
    bool WriteString(QStringView text);
    /// False when buffered text could not be written.
    bool Close();
    bool IsOpen() const { return stream != nullptr; }
    /// The system's message for the last failure.
    const QString& Error() const { return error; }

    /// True when the first two bytes of the file are the UTF-16 little-endian mark.
    static bool HasWideMark(const QString& path);

  private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    bool readNarrow(QString& line);
    bool readWide(QString& line);
    bool write(const void* data, std::size_t size);

    std::unique_ptr<std::FILE, Closer> stream;
    QString error;
    bool lastWasReturn = false;
};
