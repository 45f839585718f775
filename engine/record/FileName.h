// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Splits and joins the paths of drawings. Paths come from this system ("/home/…") and, through lists made
// elsewhere, from systems with drives and backslashes ("C:\work\a.dwg", "\\server\share\a.dwg"); the latter
// keep their own separators, so that a list can go back where it came from. Everywhere else a backslash is
// a character of a name like any other.
#include <QString>
#include <QStringView>

/// True for paths of the forms `X:\…` and `\\server\…`.
bool IsWindowsPath(QStringView path);

/// A path and its pieces. Nothing looks at the disk and no piece changes its case.
class CFileName {
  public:
    CFileName() = default;
    explicit CFileName(const QString& path);
    void SetPath(const QString& path);

    const QString& Path() const { return path; }
    /// Name with extension.
    QString GetNameExt() const { return path.sliced(nameStart); }
    /// Name without extension.
    QString GetName() const { return path.sliced(nameStart, extStart - nameStart); }
    /// Extension with its dot, from the last dot of the name; empty when there is none.
    QString GetExt() const { return path.sliced(extStart); }
    /// Drive and directory with the trailing separator; empty for a bare name.
    QString GetDirectory() const { return path.first(nameStart); }

  private:
    QString path;
    qsizetype nameStart = 0;
    qsizetype extStart = 0;
};

/// Where the name of a path begins: behind its last separator.
qsizetype NameOffset(QStringView path);

/// Directory and name as one path. A separator of the directory's own kind goes between unless the directory
/// ends in one; an empty directory adds nothing.
QString JoinPath(QStringView directory, QStringView name);
/// The same at the end of a text.
void AppendPath(QString& out, QStringView directory, QStringView name);

/// The directory without the separators of either kind at its end.
QString TrimSeparators(const QString& directory);
