#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What a new gen_define.h takes over from the old one.
struct FormerDefines
{
    static constexpr char startMark[] = "/* user-specific section: start */";
    static constexpr char endMark[] = "/* user-specific section: end */";

    /// The lines between the marks, byte for byte, whatever encoding and line ends they have.
    QByteArray userSection;
    /// Value of GEN_GENERATION_COUNT; 0 if the file has none.
    quint32 generations = 0;

    /// Nothing if there is a file which cannot be read, so that its user section would be lost. Without a file, both
    /// are empty.
    static std::optional<FormerDefines> read(const QString &path);
    static FormerDefines parse(const QByteArray &content);
};
