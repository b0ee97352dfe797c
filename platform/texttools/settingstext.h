#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

class QIODevice;

/// The text form of settings: byte for byte what the framework's settings class writes and reads in its INI format, but
/// streamed, so that a project of a million keys need not stand in memory as a tree of variants.
///
/// A key is a path with "/" between its groups. Its first part is the section of the file; what has no group stands in
/// the section "General", and a group of that name in "%General". Sections and keys are in ascending order of their
/// UTF-16 code units. The file is UTF-8, with or without a byte order mark.
namespace SettingsText {

/// A key as it stands in a file: "/" as "\", other characters that a key cannot hold as %20 or %U20AC.
QByteArray escapedKey(QStringView key);
/// A value as it stands in a file, quoted and escaped where it has to be.
void appendText(QByteArray &out, const QString &text);
void appendBytes(QByteArray &out, const QByteArray &bytes);

/// Writes sections and their keys in the order they are given; ascending order is up to the caller.
class Writer
{
public:
    explicit Writer(QIODevice &device)
        : device_(device)
    {
    }

    /// The section of the keys that follow; a section without keys leaves nothing in the file.
    void setSection(const QString &name) { section_ = name; }
    /// What stands before each of the keys that follow, escaped.
    void setRow(const QByteArray &escapedPath) { row_ = escapedPath; }
    void writeText(const QByteArray &escapedKey, const QString &value);
    void writeBytes(const QByteArray &escapedKey, const QByteArray &value);
    void writeNumber(const QByteArray &escapedKey, qint64 value);
    /// Hands everything to the device; false if any of it could not be written.
    bool flush();

private:
    void beginKey(const QByteArray &escapedKey);
    void endKey();

    QIODevice &device_;
    QByteArray buffer_;
    QString section_;
    QString openSection_;
    QByteArray row_;
    bool anySection_ = false;
    bool failed_ = false;
};

/// Reads such a file. Anything is accepted: what is no section, key or value of one is passed over, in linear time.
class Reader
{
public:
    /// The key below its group, and its value: text or, for what was written as such, bytes; a list is the text of its
    /// parts joined by ","; invalid for a value that says so. The marked forms of geometry, dates and serialised
    /// objects, which no project holds, stay the text that they are.
    using Visit = std::function<void(const QString &key, const QVariant &value)>;

    /// False if the file cannot be read.
    bool open(const QString &path);
    void setContent(const QByteArray &content);
    /// Groups that hold at least one key, in ascending order.
    QStringList groups() const { return groups_; }
    /// Every key below a group once, in ascending order, with the value that stands last in the file.
    void forEachKey(const QString &group, const Visit &visit) const;

private:
    struct Slice
    {
        qsizetype start = 0;
        qsizetype length = 0;
    };
    struct Section
    {
        QList<Slice> slices;
        bool hasGroups = false; ///< of the section without a group: some of its keys are in one
        bool isOrdered = true;  ///< its keys ascend and need no unescaping, as in every file that nobody has edited
    };

    void visitOrdered(const Section &section, const QString &prefix, const Visit &visit) const;

    QByteArray content_;
    QMap<QString, Section> sections_; ///< by the prefix of their keys, "Objects0/", or "" for what has no group
    QStringList groups_;
};

} // namespace SettingsText
