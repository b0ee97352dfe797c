#pragma once

#include <QString>

#include <array>
#include <optional>

/// Access rights. A record holds one as its word, because a project may have any word there: whoever asks for a word's
/// meaning says here what an unknown one has.
namespace CANopen {

/// What the network may do with a value (CiA 301, CiA 306).
enum class Access : quint8
{
    Const,          ///< read what never changes
    ReadOnly,       ///< read
    WriteOnly,      ///< write
    ReadWrite,      ///< read and write
    ReadWriteInput, ///< read and write, and map it into a TPDO only
    ReadWriteOutput ///< read and write, and map it into an RPDO only
};

inline constexpr std::array<QStringView, 6> accessWords = {u"const", u"ro", u"wo", u"rw", u"rwr", u"rww"};

constexpr QStringView wordOf(Access access)
{
    return accessWords.at(static_cast<std::size_t>(access));
}

/// The word as a record holds it, without memory of its own.
inline QString textOf(Access access)
{
    return QString::fromRawData(wordOf(access).data(), wordOf(access).size());
}

/// Nothing for a word that is none of the six to the letter.
std::optional<Access> accessOf(QAnyStringView word);

inline bool operator==(const QString &word, Access access)
{
    return word == wordOf(access);
}

/// True for "wo", "rw", "rwr", "rww", and an unknown word with a "w" in it.
inline bool isWritable(QStringView word)
{
    return word.contains(u'w');
}

/// True for "rw", "rwr", "rww", and an unknown word that begins so.
inline bool isReadWrite(QStringView word)
{
    return word.startsWith(wordOf(Access::ReadWrite));
}

/// True if an RPDO may write it; not for an unknown word.
bool fitsReceivePdo(QStringView word);
/// True if a TPDO may read it; not for an unknown word.
bool fitsTransmitPdo(QStringView word);

} // namespace CANopen
