#include "texttools/settingstext.h"

#include "texttools/asciitext.h"
#include "texttools/settingslines.h"
#include "texttools/settingsvalue.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace SettingsText {
namespace {

constexpr qint64 maxFileSize = 512LL << 20; ///< a text beyond this is no project
constexpr auto generalSection = "general"_L1;

/// The prefix of a section's keys, from its head.
QString prefixOf(QByteArrayView head)
{
    const qsizetype end = head.indexOf(']');
    const QByteArrayView name = (end < 0 ? head : head.first(end)).sliced(1).trimmed();
    const QLatin1StringView latin1(name);
    if (latin1.compare(generalSection, Qt::CaseInsensitive) == 0)
        return {};
    QString prefix;
    if (latin1.startsWith(u'%') && latin1.sliced(1).compare(generalSection, Qt::CaseInsensitive) == 0)
        prefix = latin1.sliced(1);
    else
        appendUnescapedKey(prefix, name);
    return prefix + u'/';
}

/// Gathers keys into rows for `Reader::forEachRow`.
class RowCollector
{
public:
    RowCollector(qsizetype depth, const Reader::VisitRow &visit)
        : depth_(depth)
        , visit_(visit)
    {
    }
    ~RowCollector() { finish(); }
    Q_DISABLE_COPY_MOVE(RowCollector)

    /// The views must last until the collector ends.
    void add(QByteArrayView key, QByteArrayView value)
    {
        if (!isOfRow(key)) {
            const qsizetype end = key.lastIndexOf('\\');
            if (end < 0 || std::ranges::count(key, '\\') != depth_)
                return;
            finish();
            row_.path = key.first(end);
        }
        row_.columns.push_back(key.sliced(row_.path.size() + 1));
        row_.values.push_back(value);
    }

private:
    bool isOfRow(QByteArrayView key) const
    {
        const qsizetype end = row_.path.size();
        return !row_.columns.empty() && key.size() > end && key.at(end) == '\\' && key.startsWith(row_.path) &&
               std::find(key.begin() + end + 1, key.end(), '\\') == key.end();
    }
    void finish()
    {
        if (!row_.columns.empty())
            visit_(row_);
        row_.columns.clear();
        row_.values.clear();
    }

    const qsizetype depth_;
    const Reader::VisitRow &visit_;
    Row row_;
};

bool isPlainByte(char ch)
{
    return ch >= ' ' && ch < 0x7f && ch != '"' && ch != '\\';
}

} // namespace

QString unescapedKey(QByteArrayView key)
{
    QString result;
    appendUnescapedKey(result, key);
    return result;
}

QList<QByteArrayView> partsOf(QByteArrayView path)
{
    QList<QByteArrayView> parts;
    for (qsizetype end = path.indexOf('\\'); end >= 0; end = path.indexOf('\\')) {
        parts.append(path.first(end));
        path = path.sliced(end + 1);
    }
    parts.append(path);
    return parts;
}

std::optional<QByteArrayView> plainValue(QByteArrayView value)
{
    const bool isQuoted = value.size() > 1 && value.startsWith('"') && value.endsWith('"');
    const QByteArrayView inner = isQuoted ? value.sliced(1, value.size() - 2) : value;
    const bool isBounded = !inner.startsWith(' ') && !inner.endsWith(' ') && !inner.startsWith('@');
    // Outside quotes a comma makes a list, in which "@" may mark a part.
    const bool isPlain = isBounded && std::ranges::all_of(inner, [isQuoted](char ch) {
                             return isPlainByte(ch) && (isQuoted || (ch != ',' && ch != '@'));
                         });
    return isPlain ? std::optional(inner) : std::nullopt;
}

QVariant valueOf(QByteArrayView value)
{
    const auto plain = plainValue(value);
    return plain ? QVariant(AsciiText::shared(*plain)) : ValueParser(value).value();
}

bool Reader::open(const QString &path)
{
    const QFileInfo info(path);
    QFile file(path);
    // A pipe or device would never end.
    if (!info.isFile() || info.size() > maxFileSize || !file.open(QIODevice::ReadOnly))
        return false;
    setContent(file.readAll());
    return file.error() == QFileDevice::NoError;
}

void Reader::setContent(const QByteArray &content)
{
    constexpr QByteArrayView byteOrderMark = "\xef\xbb\xbf";
    content_ = content;
    sections_.clear();
    QByteArrayView data = content_;
    const qsizetype begin = data.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
    data = data.sliced(begin);

    QSet<QString> groups;
    QString prefix;
    QString key;
    Section section;
    QByteArrayView keyBefore;
    qsizetype sectionStart = 0;
    const auto endSection = [&](qsizetype end) {
        if (keyBefore.isNull())
            return;
        if (!prefix.isEmpty())
            groups.insert(prefix.left(prefix.indexOf(u'/')));
        Section &known = sections_[prefix];
        known.isOrdered = section.isOrdered && known.slices.isEmpty();
        known.isPlain &= section.isPlain;
        known.hasGroups |= section.hasGroups;
        known.slices.append({begin + sectionStart, end - sectionStart});
    };
    LineScanner scanner(data);
    for (Line line; scanner.next(line);) {
        if (line.of(data).startsWith('[')) {
            endSection(line.start);
            prefix = prefixOf(line.of(data));
            sectionStart = scanner.position();
            section = {};
            keyBefore = {};
        } else if (line.equals < 0) {
            section.isPlain = false;
        } else {
            const QByteArrayView rawKey = line.keyOf(data);
            section.isPlain &= line.isPlain;
            section.isOrdered = section.isOrdered && (line.isPlain || needsNoUnescaping(rawKey)) &&
                                (keyBefore.isNull() || isBelow(keyBefore, rawKey));
            keyBefore = rawKey;
            if (prefix.isEmpty()) {
                key.clear();
                appendUnescapedKey(key, rawKey);
                section.hasGroups |= key.contains(u'/');
                if (key.contains(u'/'))
                    groups.insert(key.left(key.indexOf(u'/')));
            }
        }
    }
    endSection(data.size());
    groups.remove(QString());
    groups_ = QStringList(groups.begin(), groups.end());
    groups_.sort();
}

void Reader::visitSlice(const Slice &slice, bool isPlain, const VisitRaw &visit) const
{
    const QByteArrayView data = QByteArrayView(content_).sliced(slice.start, slice.length);
    LineScanner scanner(data, isPlain);
    for (Line line; scanner.next(line);) {
        if (line.equals >= 0)
            visit(line.keyOf(data), line.valueOf(data));
    }
}

/// The one section that has all keys of a group in their order; null if there is none.
const Reader::Section *Reader::orderedSection(const QString &groupPrefix) const
{
    const auto own = sections_.constFind(groupPrefix);
    const auto rest = sections_.constFind(QString());
    const bool isAlone = own != sections_.constEnd() && (rest == sections_.constEnd() || !rest->hasGroups) &&
                         (std::next(own) == sections_.constEnd() || !std::next(own).key().startsWith(groupPrefix));
    return isAlone && own->isOrdered ? &*own : nullptr;
}

/// All keys of a group from wherever they stand, each once and in ascending order.
std::vector<Reader::Entry> Reader::sortedEntries(const QString &groupPrefix) const
{
    std::vector<Entry> entries;
    const auto collect = [&](const QString &prefix, const Section &section) {
        for (const Slice &slice : section.slices) {
            visitSlice(slice, section.isPlain, [&](QByteArrayView rawKey, QByteArrayView value) {
                QString key = prefix;
                appendUnescapedKey(key, rawKey);
                if (key.startsWith(groupPrefix))
                    entries.push_back({key.sliced(groupPrefix.size()), value});
            });
        }
    };
    if (const auto rest = sections_.constFind(QString()); rest != sections_.constEnd() && rest->hasGroups)
        collect(rest.key(), *rest);
    for (auto it = sections_.lowerBound(groupPrefix); it != sections_.constEnd() && it.key().startsWith(groupPrefix);
         ++it)
        collect(it.key(), *it);
    std::ranges::stable_sort(entries, {}, &Entry::key);
    // Of a key that stands twice the last one counts.
    std::vector<Entry> last;
    for (Entry &entry : entries) {
        if (!last.empty() && last.back().key == entry.key)
            last.back() = std::move(entry);
        else
            last.push_back(std::move(entry));
    }
    return last;
}

void Reader::forEachKey(const QString &group, const Visit &visit) const
{
    const QString groupPrefix = group + u'/';
    if (const Section *section = orderedSection(groupPrefix)) {
        visitSlice(section->slices.first(), section->isPlain, [&visit](QByteArrayView key, QByteArrayView value) {
            visit(QString::fromLatin1(key).replace(u'\\', u'/'), valueOf(value));
        });
        return;
    }
    for (const Entry &entry : sortedEntries(groupPrefix))
        visit(entry.key, valueOf(entry.value));
}

void Reader::forEachRow(const QString &group, qsizetype depth, const VisitRow &visit) const
{
    const QString groupPrefix = group + u'/';
    if (const Section *section = orderedSection(groupPrefix)) {
        RowCollector rows(depth, visit);
        visitSlice(section->slices.first(), section->isPlain,
                   [&rows](QByteArrayView key, QByteArrayView value) { rows.add(key, value); });
        return;
    }
    const std::vector<Entry> entries = sortedEntries(groupPrefix);
    std::vector<QByteArray> keys;
    keys.reserve(entries.size());
    RowCollector rows(depth, visit);
    for (const Entry &entry : entries)
        rows.add(keys.emplace_back(escapedKey(entry.key)), entry.value);
}

} // namespace SettingsText
