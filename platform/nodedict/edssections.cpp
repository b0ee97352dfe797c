#include "nodedict/edssections.h"

#include <QVarLengthArray>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

/// In lower case.
constexpr std::array<QByteArrayView, 5> namedSections = {"fileinfo", "deviceinfo", "dummyusage", "comments",
                                                         "mandatoryobjects"};

struct Suffix
{
    QByteArrayView word; ///< lower case
    EdsSections::Topic topic;
};

constexpr Suffix suffixes[] = {
    {"", EdsSections::Object},
    {"name", EdsSections::Names},
    {"value", EdsSections::Values},
    {"denotation", EdsSections::Denotations},
};

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char letter = static_cast<char>(c | 0x20);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

/// A number of hexadecimal digits only, up to `highest`; a "0x" in front is overlooked.
std::optional<quint32> hexNumber(QByteArrayView digits, quint32 highest)
{
    if (digits.size() > 2 && TextBytes::equals(digits.first(2), "0x"))
        digits = digits.sliced(2);
    quint32 value = 0;
    for (const char c : digits) {
        const int digit = hexDigit(c);
        if (digit < 0)
            return std::nullopt;
        value = value << 4 | static_cast<quint32>(digit);
        if (value > highest)
            return std::nullopt;
    }
    return digits.isEmpty() ? std::nullopt : std::optional(value);
}

constexpr qsizetype longest = 64;
using HeadName = QVarLengthArray<char, longest + 1>;

/// What stands between the brackets, without any blanks; empty if it is too long to be of interest.
HeadName headName(QByteArrayView line)
{
    HeadName name;
    for (const char c : line.sliced(1)) {
        if (c == ']')
            break;
        if (c != ' ' && c != '\t' && c != '\0')
            name.append(c);
        if (name.size() > longest)
            return {};
    }
    return name;
}

} // namespace

bool EdsSections::load(const QString &path)
{
    const bool loaded = text_.load(path);
    findSections();
    return loaded;
}

void EdsSections::setContent(const QByteArray &content)
{
    text_.setContent(content);
    findSections();
}

std::optional<EdsSections::Head> EdsSections::namedHead(QByteArrayView name)
{
    const auto found = std::ranges::find_if(namedSections, [&](auto known) { return TextBytes::equals(name, known); });
    if (found == namedSections.end())
        return std::nullopt;
    return Head{static_cast<quint32>(found - namedSections.begin()), Named};
}

std::optional<EdsSections::Head> EdsSections::parseHead(QByteArrayView line)
{
    const HeadName name = headName(line);
    QByteArrayView rest(name.data(), name.size());
    if (const auto head = namedHead(rest))
        return head;
    if (rest.size() >= 6 && TextBytes::equals(rest.first(2), "0x"))
        rest = rest.sliced(2);
    if (rest.size() < 4)
        return std::nullopt;
    const auto index = hexNumber(rest.first(4), 0xffff);
    if (!index)
        return std::nullopt;
    rest = rest.sliced(4);
    for (const auto &[word, topic] : suffixes) {
        if (TextBytes::equals(rest, word))
            return Head{*index, topic};
    }
    if (rest.size() > 3 && TextBytes::equals(rest.first(3), "sub")) {
        if (const auto sub = hexNumber(rest.sliced(3), 0xff))
            return Head{*index, *sub};
    }
    return Head{*index, OtherOfObject};
}

void EdsSections::findSections()
{
    heads_.clear();
    occurrences_.clear();
    first_.clear();
    commented_.clear();

    std::optional<Head> head;
    Occurrence place;
    bool hasComment = false;
    const auto finish = [&](qsizetype end) {
        place.end = end;
        if (head && head->topic != OtherOfObject)
            add(*head, place);
        if (head && head->ofObject() && hasComment)
            commented_.push_back({*head, place});
    };

    TextLines lines(text_.bytes());
    for (QByteArrayView line; lines.next(line);) {
        hasComment = hasComment || line.startsWith(";;");
        // The blanks in front of a long line of them are looked at once only.
        const QByteArrayView start = TextBytes::trimmed(line.first(qMin(line.size(), qsizetype{256})));
        if (start.isEmpty() || start.front() != '[')
            continue;
        finish(lines.lineStart());
        head = parseHead(start);
        place = {lines.lineStart() + line.size(), 0, -1, lines.number()};
        hasComment = false;
    }
    finish(text_.bytes().size());
}

void EdsSections::add(const Head &head, const Occurrence &place)
{
    const auto position = static_cast<qsizetype>(occurrences_.size());
    occurrences_.push_back(place);
    const auto chain = first_.find(head.key());
    if (chain == first_.end()) {
        first_.insert(head.key(), {position, position});
        heads_.push_back(head);
    } else {
        occurrences_[static_cast<size_t>(chain->last)].next = position;
        chain->last = position;
    }
}

qsizetype EdsSections::lineOf(const Head &head) const
{
    const auto chain = first_.constFind(head.key());
    return chain == first_.constEnd() ? 0 : occurrences_[static_cast<size_t>(chain->first)].line;
}

QList<EdsSections::Comment> EdsSections::comments() const
{
    QHash<quint32, size_t> last;
    for (size_t i = 0; i < commented_.size(); ++i)
        last[commented_[i].head.key()] = i;
    QList<Comment> result;
    for (size_t i = 0; i < commented_.size(); ++i) {
        const auto &[head, place] = commented_[i];
        if (last.value(head.key()) != i)
            continue;
        Comment comment{static_cast<quint16>(head.index), std::nullopt, QString()};
        if (head.isSub())
            comment.subindex = static_cast<quint8>(head.topic);
        TextLines lines(text_.bytes().sliced(place.begin, place.end - place.begin));
        for (QByteArrayView line; lines.next(line);) {
            if (!line.startsWith(";;"))
                continue;
            if (!comment.text.isNull())
                comment.text += u'\n';
            comment.text += text_.decode(line.sliced(2));
            if (comment.text.isNull())
                comment.text = u""_s;
        }
        result.append(comment);
    }
    return result;
}
