#include "ncx/findings/textplaces.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

int TextPlaces::lineOf(const FindingPlace &place)
{
    if (!isRead_)
        read();
    isRead_ = true;
    const QString line = QString::number(place.line.value_or(0));
    int found = 0;
    const auto look = [&](const QString &section, const QString &row) {
        if (found == 0)
            found = lineOf(section, row);
    };
    if (place.index) {
        const QString object = u"0x%1"_s.arg(*place.index, 4, 16, QLatin1Char('0'));
        if (place.subindex)
            look("SubObjects"_L1 + line, u"%1\\%2"_s.arg(object).arg(*place.subindex));
        look("Objects"_L1 + line, object);
        look("SubObjects"_L1 + line, object);
    } else if (place.pgn) {
        if (place.spn)
            look("SPNs"_L1 + line, u"%1\\%2"_s.arg(*place.pgn).arg(*place.spn));
        look("PGNs"_L1 + line, QString::number(*place.pgn));
    } else if (!place.setting.isEmpty()) {
        look(u"GeneralSettings"_s, place.setting);
        look(u"J1939Settings"_s, place.setting);
    }
    return found;
}

int TextPlaces::lineOf(const QString &section, const QString &row) const
{
    return lines_.value((section + u'/' + row).toLower().toUtf8());
}

/// Keys have "\" between their parts. What stands before the last one is a row, whose columns follow each other.
void TextPlaces::read()
{
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray content = file.readAll();
    const auto note = [this](const QByteArray &row, int number) {
        if (const QByteArray key = row.toLower(); !lines_.contains(key))
            lines_.insert(key, number);
    };
    QByteArray section;
    QByteArrayView rowBefore; // with the "\\" behind it
    // Most lines are of a row whose first line has been noted.
    const auto isKnown = [&rowBefore](QByteArrayView line) {
        if (rowBefore.isEmpty() || !line.startsWith(rowBefore))
            return false;
        const auto end =
            std::find_if(line.begin() + rowBefore.size(), line.end(), [](char ch) { return ch == '=' || ch == '\\'; });
        return end != line.end() && *end == '=';
    };
    qsizetype start = 0;
    for (int number = 1; start < content.size(); ++number) {
        const qsizetype end = content.indexOf('\n', start);
        const QByteArrayView line = QByteArrayView(content).sliced(start, (end < 0 ? content.size() : end) - start);
        start = end < 0 ? content.size() : end + 1;
        if (isKnown(line))
            continue;
        const qsizetype keyEnd = line.indexOf('=');
        if (line.startsWith('[')) {
            section = line.sliced(1, std::max<qsizetype>(line.indexOf(']'), 1) - 1).toByteArray() + '/';
            rowBefore = {};
        }
        if (keyEnd <= 0 || line.startsWith('[') || line.startsWith(';') || line.startsWith('#'))
            continue;
        const QByteArrayView key = line.first(keyEnd).trimmed();
        const QByteArrayView row = key.first(std::max<qsizetype>(key.lastIndexOf('\\'), 0));
        if (row.isEmpty())
            note(section + key.toByteArray(), number);
        if (row.isEmpty())
            continue;
        rowBefore = key.first(row.size() + 1);
        note(section + row.toByteArray(), number);
        if (const qsizetype parent = row.lastIndexOf('\\'); parent > 0)
            note(section + row.first(parent).toByteArray(), number);
    }
}
