#pragma once

#include <string>

#include <QDir>
#include <QFile>
#include <QString>

// Paths between the core, which has them in the file system's encoding, and the toolkit. On Windows that encoding is
// UTF-8, whatever code page the user has.

[[nodiscard]] inline QString TextOfPath(const std::string& path)
{
    const QByteArray bytes = QByteArray::fromStdString(path);
#ifdef Q_OS_WIN
    return QString::fromUtf8(bytes);
#else
    return QFile::decodeName(bytes);
#endif
}

[[nodiscard]] inline std::string PathOfText(const QString& text)
{
#ifdef Q_OS_WIN
    return QDir::toNativeSeparators(text).toStdString();
#else
    return QFile::encodeName(text).toStdString();
#endif
}
