#include "ncx/commands/framedrawing.h"

#include "ncx/commands/texttable.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int byteBits = Frame::byteBits;
constexpr int margin = 9; ///< "byte 63 "
constexpr int narrowestCell = 4;
constexpr int widestCell = 9;
constexpr int nobody = Frame::nobody;

class Drawing
{
public:
    Drawing(const Frame &frame, int width)
        : frame_(frame)
        , owners_(frame.owners())
        , cell_(std::clamp((width - margin - 1) / byteBits, narrowestCell, widestCell))
    {
    }

    QStringList lines()
    {
        QStringList lines{bitNumbers()};
        for (size_t byte = 0; byte < owners_.size() / byteBits; ++byte)
            lines += {border(byte), row(byte)};
        lines.append(border(owners_.size() / byteBits));
        return lines;
    }

private:
    /// The field in a place: `column` 0 is bit 7 of a byte.
    int owner(size_t byte, int column) const
    {
        const size_t bit = byte * byteBits + static_cast<size_t>(byteBits - 1 - column);
        return bit < owners_.size() ? owners_[bit] : nobody;
    }

    QString bitNumbers() const
    {
        QString line(margin, u' ');
        for (int column = 0; column < byteBits; ++column)
            line += QString::number(byteBits - 1 - column).leftJustified(cell_ / 2 + 1).rightJustified(cell_);
        return trimmed(line);
    }

    /// True where a field goes on from the byte above.
    bool goesOn(size_t byte, int column) const
    {
        const int own = owner(byte, column);
        return byte > 0 && byte < owners_.size() / byteBits && own != nobody && own == owner(byte - 1, column);
    }

    /// The line above a byte, open where a field goes on from the byte above.
    QString border(size_t byte) const
    {
        QString line(margin, u' ');
        for (int column = 0; column < byteBits; ++column) {
            const bool isOpen = goesOn(byte, column);
            const bool isInside =
                column > 0 && isOpen && goesOn(byte, column - 1) && owner(byte, column) == owner(byte, column - 1);
            const char16_t edge = column == 0 && isOpen ? u'|' : u'+';
            line += QChar(isInside ? u' ' : edge) + QString(cell_ - 1, isOpen ? u' ' : u'-');
        }
        return line + QChar(goesOn(byte, byteBits - 1) ? u'|' : u'+');
    }

    QString row(size_t byte)
    {
        QString line = u"byte %1"_s.arg(byte).leftJustified(margin);
        for (int column = 0; column < byteBits;) {
            int end = column + 1;
            while (end < byteBits && owner(byte, end) == owner(byte, column))
                ++end;
            line += u'|' + label(owner(byte, column), (end - column) * cell_ - 1);
            column = end;
        }
        return line + u'|';
    }

    /// The name of a field in its first place, its letter in every other.
    QString label(int field, qsizetype width)
    {
        if (field == nobody)
            return QString(width, u'.');
        const QString letter = Frame::letterOf(field);
        const QString name = u" %1 %2"_s.arg(letter, frame_.fields.at(field).name);
        const bool isFirst = !named_.contains(field);
        named_.append(field);
        return isFirst && name.size() <= width ? name.leftJustified(width) : (u' ' + letter).leftJustified(width);
    }

    static QString trimmed(QString line)
    {
        while (line.endsWith(u' '))
            line.chop(1);
        return line;
    }

    const Frame &frame_;
    std::vector<int> owners_;
    int cell_;
    QList<int> named_;
};

} // namespace

QStringList drawing(const Frame &frame, int width)
{
    if (frame.fields.isEmpty())
        return {};
    QStringList lines;
    if (frame.bits <= Frame::mostBits)
        lines = Drawing(frame, width).lines();
    TextTable table({u""_s, u"start"_s, u"bits"_s, u"name"_s, u"what"_s});
    for (int i = 0; i < frame.fields.size(); ++i) {
        const FrameField &field = frame.fields.at(i);
        table.add({Frame::letterOf(i), u"%1.%2"_s.arg(field.first / byteBits).arg(field.first % byteBits),
                   QString::number(field.bits), field.name.isEmpty() ? u"(unused)"_s : field.name, field.address});
    }
    return lines + table.lines(width, 2);
}
