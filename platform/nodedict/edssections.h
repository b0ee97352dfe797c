#pragma once

#include "texttools/textfile.h"

#include <QHash>
#include <QList>

#include <optional>
#include <vector>

/// The sections of a device description (CiA 306) as places in its text, found in one pass.
///
/// Only the heads are read in that pass; keys and values are read when they are asked for. Sections that nobody asks
/// for take no memory, so that a file of garbage costs no more than its size.
class EdsSections
{
public:
    /// What a section is about. Below 0x100 it is the sub-object with that sub-index.
    enum Topic : quint32
    {
        Object = 0x100,
        Names,        ///< [xxxxName], names of compact sub-objects
        Values,       ///< [xxxxValue], their parameter values
        Denotations,  ///< [xxxxDenotation]
        Named,        ///< one of `namedSections`
        OtherOfObject ///< any other section whose name begins with an index
    };

    struct Head
    {
        quint32 index = 0; ///< of the object; of a `Named` section its place in `namedSections`
        quint32 topic = OtherOfObject;

        quint32 key() const { return index << 16 | topic; }
        bool isSub() const { return topic < Object; }
        bool ofObject() const { return topic != Named; }
    };

    struct Comment
    {
        quint16 index = 0;              ///< of the section that the lines stand in
        std::optional<quint8> subindex; ///< none unless the section is a sub-object's
        QString text;
    };

    /// Reads the file; false if `TextFile::load` fails.
    bool load(const QString &path);
    void setContent(const QByteArray &content);

    /// The head in a line that begins with "[": "[1018]", "[1018sub1]", "[ 1A00 SubF ]", "[DeviceInfo]". None for a
    /// section that is of no use here. A missing "]" is overlooked.
    static std::optional<Head> parseHead(QByteArrayView line);
    /// The head of a named section; none if it is not one of those that are kept.
    static std::optional<Head> namedHead(QByteArrayView name);

    /// The sections, each once, in the order of the file.
    const std::vector<Head> &heads() const { return heads_; }
    bool has(const Head &head) const { return first_.contains(head.key()); }
    /// Calls `visit(key, value)`, both without blanks around them, for each assignment in the section, first to last,
    /// through all its occurrences.
    template <typename Visitor>
    void eachEntry(const Head &head, Visitor visit) const;
    QString decode(QByteArrayView part) const { return text_.decode(part); }
    /// Number of the line in which the head of a section first stands, from 1; 0 if there is none.
    qsizetype lineOf(const Head &head) const;

    /// The ";;" lines, joined by line feeds, one entry for each section that holds any, in file order. Where a section
    /// stands more than once, its last occurrence with such lines counts.
    QList<Comment> comments() const;

private:
    struct Occurrence
    {
        qsizetype begin = 0;
        qsizetype end = 0;
        qsizetype next = -1; ///< of the same section
        qsizetype line = 0;  ///< of the head
    };
    struct Chain
    {
        qsizetype first = 0;
        qsizetype last = 0;
    };
    struct Commented
    {
        Head head;
        Occurrence place;
    };

    void findSections();
    void add(const Head &head, const Occurrence &place);

    TextFile text_;
    std::vector<Head> heads_;
    std::vector<Occurrence> occurrences_;
    QHash<quint32, Chain> first_;
    std::vector<Commented> commented_;
};

template <typename Visitor>
void EdsSections::eachEntry(const Head &head, Visitor visit) const
{
    const auto chain = first_.constFind(head.key());
    if (chain == first_.constEnd())
        return;
    for (qsizetype i = chain->first; i >= 0; i = occurrences_[static_cast<size_t>(i)].next) {
        const Occurrence &place = occurrences_[static_cast<size_t>(i)];
        TextLines lines(text_.bytes().sliced(place.begin, place.end - place.begin));
        for (QByteArrayView line; lines.next(line);) {
            line = TextBytes::trimmed(line);
            const qsizetype equals = line.indexOf('=');
            if (equals > 0 && line.front() != ';' && line.front() != '#')
                visit(TextBytes::trimmed(line.first(equals)), TextBytes::trimmed(line.sliced(equals + 1)));
        }
    }
}
