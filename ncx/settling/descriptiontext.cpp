#include "ncx/settling/descriptiontext.h"

#include "nodedict/edsvalue.h"
#include "texttools/textfile.h"

#include <algorithm>

using namespace Qt::StringLiterals;

const DescriptionText::Entry *DescriptionText::Section::entry(QLatin1StringView key) const
{
    const auto found = std::ranges::find_if(
        entries, [key](const Entry &entry) { return entry.key.compare(key, Qt::CaseInsensitive) == 0; });
    return found == entries.end() ? nullptr : &*found;
}

QString DescriptionText::Section::word(QLatin1StringView key) const
{
    const Entry *found = entry(key);
    return found ? EdsValue::word(found->value) : QString();
}

bool DescriptionText::load(const QString &path)
{
    TextFile text;
    if (!text.load(path))
        return false;
    Section *section = nullptr;
    TextLines lines(text.bytes());
    for (QByteArrayView line; lines.next(line);) {
        line = TextBytes::trimmed(line);
        if (line.isEmpty() || line.front() == ';' || line.front() == '#')
            continue;
        const auto number = static_cast<int>(lines.number());
        if (line.front() == '[') {
            const qsizetype end = line.indexOf(']');
            section = &sectionOf(line, text.decode(line.sliced(1, (end < 0 ? line.size() : end) - 1)), number);
        } else if (const qsizetype equals = line.indexOf('='); section && equals > 0) {
            section->entries.push_back({.key = text.decode(TextBytes::trimmed(line.first(equals))),
                                        .value = text.decode(TextBytes::trimmed(line.sliced(equals + 1))),
                                        .line = number});
        }
    }
    return true;
}

DescriptionText::Section &DescriptionText::sectionOf(QByteArrayView line, QString name, int number)
{
    name.remove(u' ').remove(u'\t');
    const QString key = name.toLower();
    if (!byName_.contains(key)) {
        byName_.insert(key, sections_.size());
        Section &section = sections_.emplace_back(Section{.name = name, .line = number});
        section.head = EdsSections::parseHead(line);
        if (section.head && !section.head->ofObject())
            section.head.reset();
        if (section.head && section.head->topic != EdsSections::OtherOfObject && !byHead_.contains(section.head->key()))
            byHead_.insert(section.head->key(), sections_.size() - 1);
    }
    return sections_[byName_.value(key)];
}

const DescriptionText::Section *DescriptionText::section(const QString &name) const
{
    const auto found = byName_.constFind(name);
    return found == byName_.constEnd() ? nullptr : &sections_[*found];
}

const DescriptionText::Section *DescriptionText::section(quint16 index, std::optional<quint8> subindex) const
{
    const EdsSections::Head head{index, subindex ? quint32{*subindex} : quint32{EdsSections::Object}};
    const auto found = byHead_.constFind(head.key());
    return found == byHead_.constEnd() ? nullptr : &sections_[*found];
}

int DescriptionText::lineOf(quint16 index, std::optional<quint8> subindex, QLatin1StringView key) const
{
    const Section *of = section(index, subindex);
    if (!of && subindex)
        of = section(index, std::nullopt);
    if (!of)
        return 0;
    const Entry *entry = key.isEmpty() ? nullptr : of->entry(key);
    return entry ? entry->line : of->line;
}

bool DescriptionText::isCompact(quint16 index) const
{
    const Section *of = section(index, std::nullopt);
    return of && EdsValue::number(of->word("compactsubobj"_L1)).value_or(0) > 0;
}
