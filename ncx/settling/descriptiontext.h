#pragma once

#include "nodedict/edssections.h"

#include <QHash>
#include <QString>

#include <optional>
#include <vector>

/// A device description of CANopen (CiA 306) as its maker wrote it: all sections and keys with their lines. Where a
/// section stands twice its keys are joined, and where a key stands twice the first one counts.
class DescriptionText
{
public:
    struct Entry
    {
        QString key; ///< as it is written, like the next
        QString value;
        int line = 0;
    };
    struct Section
    {
        QString name; ///< as it is written
        int line = 0;
        /// What it is about; nothing for a section of no object.
        std::optional<EdsSections::Head> head = {};
        std::vector<Entry> entries = {};

        /// Null where the section lacks the key, which is in lower case.
        const Entry *entry(QLatin1StringView key) const;
        /// The value without a remark behind it; empty where the key is missing.
        QString word(QLatin1StringView key) const;
    };

    /// False for a file that cannot be read.
    bool load(const QString &path);

    const std::vector<Section> &sections() const { return sections_; }
    /// Null where there is none; the name is in lower case.
    const Section *section(const QString &name) const;
    const Section *section(quint16 index, std::optional<quint8> subindex) const;
    /// Of a key of an object or subindex, or of their section if that lacks the key, or of the object; 0 if the file
    /// has none of them. The key is in lower case.
    int lineOf(quint16 index, std::optional<quint8> subindex, QLatin1StringView key = {}) const;
    /// True for an object whose subindices the file gives in short.
    bool isCompact(quint16 index) const;

private:
    Section &sectionOf(QByteArrayView line, QString name, int number);

    std::vector<Section> sections_;
    QHash<QString, size_t> byName_;
    QHash<quint32, size_t> byHead_;
};
