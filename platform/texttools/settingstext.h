#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <optional>
#include <string>
#include <vector>

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
QString unescapedKey(QByteArrayView key);
/// The groups of an escaped path, still escaped.
QList<QByteArrayView> partsOf(QByteArrayView path);
/// The text as it stands in a file as a value, quoted and escaped where it has to be.
QByteArray valueText(const QString &text);
/// The value that stands so in a file: text or, for what was written as such, bytes; a list is the text of its parts
/// joined by ","; invalid for a value that says so. The marked forms of geometry, dates and serialised objects, which
/// no project holds, stay the text that they are.
QVariant valueOf(QByteArrayView value);
/// The same text without a copy where it is ASCII without anything escaped, as nearly all are; nothing for the others.
std::optional<QByteArrayView> plainValue(QByteArrayView value);

/// Writes sections and their keys in the order they are given; ascending order is up to the caller.
class Writer
{
public:
    explicit Writer(QIODevice &device)
        : device_(device)
    {
    }

    /// The section of the keys that follow; a section without keys leaves nothing in the file.
    void setSection(const QString &name);
    /// What stands before each of the keys that follow, escaped.
    void setRow(const QByteArray &escapedPath) { row_ = escapedPath; }
    void writeText(QByteArrayView escapedKey, const QString &value);
    void writeUtf8(QByteArrayView escapedKey, QByteArrayView value);
    void writeBytes(QByteArrayView escapedKey, const QByteArray &value);
    void writeNumber(QByteArrayView escapedKey, qint64 value);
    /// What `valueText` has made.
    void writeAsItStands(QByteArrayView escapedKey, QByteArrayView value);
    /// Hands everything to the device; false if any of it could not be written.
    bool flush();

private:
    void openSection();
    void beginKey(QByteArrayView escapedKey);
    void endKey();

    QIODevice &device_;
    std::string buffer_;
    QString section_;
    QByteArray row_;
    bool isOpen_ = false; ///< the section's head stands in the file
    bool anySection_ = false;
    bool failed_ = false;
};

/// A row of a group, as it stands in a file: keys that share all but their last part. The values last as long as their
/// reader.
struct Row
{
    QByteArrayView path;                 ///< what they share below the group: "0x1000\\1"
    std::vector<QByteArrayView> columns; ///< their last parts
    std::vector<QByteArrayView> values;
};

/// Reads such a file. Anything is accepted: what is no section, key or value of one is passed over, in linear time.
class Reader
{
public:
    /// The key below its group, and its value.
    using Visit = std::function<void(const QString &key, const QVariant &value)>;
    using VisitRow = std::function<void(const Row &row)>;

    /// False if the file cannot be read.
    bool open(const QString &path);
    void setContent(const QByteArray &content);
    /// Groups that hold at least one key, in ascending order.
    QStringList groups() const { return groups_; }
    /// Every key below a group once, in ascending order, with the value that stands last in the file.
    void forEachKey(const QString &group, const Visit &visit) const;
    /// The same keys by rows, which stand `depth` groups deep; keys elsewhere belong to no row.
    void forEachRow(const QString &group, qsizetype depth, const VisitRow &visit) const;

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
        bool isPlain = true;    ///< all of its lines are, but for comments
    };

    struct Entry
    {
        QString key; ///< below its group
        QByteArrayView value;
    };
    using VisitRaw = std::function<void(QByteArrayView key, QByteArrayView value)>;

    void visitSlice(const Slice &slice, bool isPlain, const VisitRaw &visit) const;
    const Section *orderedSection(const QString &groupPrefix) const;
    std::vector<Entry> sortedEntries(const QString &groupPrefix) const;

    QByteArray content_;
    QMap<QString, Section> sections_; ///< by the prefix of their keys, "Objects0/", or "" for what has no group
    QStringList groups_;
};

} // namespace SettingsText
