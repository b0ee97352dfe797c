#include "ncx/page/framesvg.h"

#include "ncx/page/printable.h"

#include <algorithm>
#include <array>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int byteBits = Frame::byteBits;
constexpr int margin = 60; ///< "byte 63"
constexpr int head = 20;   ///< the numbers of the bits
constexpr int cellWidth = 72;
constexpr int frameWidth = margin + byteBits * cellWidth + 1;
constexpr int letterWidth = 7; ///< of the font in the fields, on average
constexpr int wideLetterWidth = 13;
constexpr int titleHeight = 30;
constexpr int lineHeight = 18; ///< of the table below a frame
constexpr int gap = 16;
constexpr std::array columns{0, 36, 90, 140, 240}; ///< of the table

/// The colours of the fields in turn; a page has a darker set under the same classes.
constexpr std::array fills{"#d6e6f7"_L1, "#dcefd9"_L1, "#fbe6cf"_L1, "#ecdff5"_L1,
                           "#d3eeee"_L1, "#f8dde3"_L1, "#efecc9"_L1, "#e2e4ea"_L1};
constexpr auto style =
    "text{font-family:system-ui,sans-serif;font-size:13px;fill:#1b2026}"
    ".bit,.byte{font-size:11px;fill:#59626d}.bit{font-family:ui-monospace,monospace}"
    ".edges{fill:none;stroke:#59626d}.ticks{fill:none;stroke:#9aa3ad}.unused{fill:#f4f5f6}"
    ".title{font-size:15px;font-weight:600}"
    "@media(prefers-color-scheme:dark){svg{background:#14181c}text{fill:#e6e9ec}.bit,.byte{fill:#a3adb8}"
    ".edges{stroke:#a3adb8}.ticks{stroke:#57616c}.unused{fill:#1d2227}"
    ".f0{fill:#1d3a57}.f1{fill:#23442a}.f2{fill:#543a1c}.f3{fill:#43305a}"
    ".f4{fill:#174747}.f5{fill:#57293a}.f6{fill:#47431b}.f7{fill:#363c46}}"_L1;

/// Neighbouring bits of a byte that belong to the same field; columns from the left, bit 7 first.
struct Run
{
    int byte;
    int begin;
    int end;
    int owner;

    int columns() const { return end - begin; }
};

qsizetype widthOf(const QString &text)
{
    qsizetype width = 0;
    for (const QChar letter : text)
        width += letter.unicode() < 0x1100 ? letterWidth : wideLetterWidth;
    return width;
}

/// What of a text fits, with an ellipsis for the rest.
QString fitting(QString text, int width)
{
    if (widthOf(text) <= width)
        return text;
    while (!text.isEmpty() && widthOf(text) + letterWidth > width)
        text.chop(text.size() > 1 && text.back().isLowSurrogate() ? 2 : 1);
    return text.trimmed() + u'…';
}

class Drawing
{
public:
    explicit Drawing(const FrameSvg::Titled &titled)
        : frame_(titled.frame)
        , count_(titled.count)
        , owners_(frame_.owners())
        , bytes_(static_cast<int>(owners_.size()) / byteBits)
        , rowHeight_(bytes_ > 8 ? 26 : 36)
    {
        for (int byte = 0; byte < bytes_; ++byte) {
            for (int column = 0; column < byteBits;) {
                int end = column + 1;
                while (end < byteBits && owner(byte, end) == owner(byte, column))
                    ++end;
                runs_.push_back({.byte = byte, .begin = column, .end = end, .owner = owner(byte, column)});
                column = end;
            }
        }
    }

    int height() const { return head + bytes_ * rowHeight_ + 1; }

    QString parts() const
    {
        QString svg = bitNumbers();
        for (int byte = 0; byte < bytes_; ++byte)
            svg += u"<text class=\"byte\" x=\"0\" y=\"%1\">byte %2</text>"_s.arg(middle(byte) + 4).arg(byte + first());
        for (int field = Frame::nobody; field < frame_.fields.size(); ++field)
            svg += fieldParts(field);
        return svg + ticks() + edges();
    }

private:
    int owner(int byte, int column) const
    {
        if (byte < 0 || byte >= bytes_ || column < 0 || column >= byteBits)
            return Frame::nobody - 1;
        return owners_[static_cast<size_t>(byte * byteBits + byteBits - 1 - column)];
    }

    int first() const { return count_ == FrameSvg::Count::FromOne ? 1 : 0; }
    int top(int byte) const { return head + byte * rowHeight_; }
    int middle(int byte) const { return top(byte) + rowHeight_ / 2; }
    static int left(int column) { return margin + column * cellWidth; }

    QString bitNumbers() const
    {
        QString svg;
        for (int column = 0; column < byteBits; ++column)
            svg += u"<text class=\"bit\" x=\"%1\" y=\"13\" text-anchor=\"middle\">%2</text>"_s
                       .arg(left(column) + cellWidth / 2)
                       .arg(byteBits - 1 - column + first());
        return svg;
    }

    /// The place of a column among the bits of a field's value.
    quint32 valueBit(const Run &run, int column) const
    {
        const auto bit = static_cast<quint32>(run.byte * byteBits + byteBits - 1 - column);
        return bit - frame_.fields.at(run.owner).first;
    }

    QString fieldParts(int field) const
    {
        const bool isUsed = field != Frame::nobody && !frame_.fields.at(field).address.isEmpty();
        const Run *widest = nullptr;
        for (const Run &run : runs_) {
            if (run.owner == field && (!widest || run.columns() > widest->columns()))
                widest = &run;
        }
        if (!widest)
            return {};
        QString svg = isUsed ? u"<g class=\"field\" data-field=\"%1\"><title>%2</title>"_s.arg(field).arg(title(field))
                             : u"<g>"_s;
        for (const Run &run : runs_) {
            if (run.owner == field)
                svg += isUsed ? box(run) + texts(run, &run == widest) : box(run);
        }
        return svg + u"</g>"_s;
    }

    QString title(int field) const
    {
        const FrameField &data = frame_.fields.at(field);
        return Printable::xml(u"%1 %2: start %3 (bit %4), %5"_s.arg(
            data.address, data.name, FrameSvg::startText(data.first, count_), QString::number(data.first),
            data.bits == 1 ? u"1 bit"_s : u"%1 bits"_s.arg(data.bits)));
    }

    QString box(const Run &run) const
    {
        const bool isUsed = run.owner != Frame::nobody && !frame_.fields.at(run.owner).address.isEmpty();
        const size_t colour = isUsed ? static_cast<size_t>(run.owner) % fills.size() : 0;
        return u"<rect class=\"%1\" fill=\"%2\" x=\"%3\" y=\"%4\" width=\"%5\" height=\"%6\"/>"_s.arg(
            isUsed ? u"f%1"_s.arg(colour) : u"unused"_s, isUsed ? QString(fills.at(colour)) : u"#f4f5f6"_s,
            QString::number(left(run.begin)), QString::number(top(run.byte)),
            QString::number(run.columns() * cellWidth), QString::number(rowHeight_));
    }

    /// The letter, with the name where it fits best, and the first and last bit of the value.
    QString texts(const Run &run, bool isNamed) const
    {
        constexpr int padding = 6;
        constexpr int digits = 22;
        const int width = run.columns() * cellWidth - 2 * padding - (run.columns() > 1 ? 2 : 1) * digits;
        const QString letter = Frame::letterOf(run.owner);
        const QString name = frame_.fields.at(run.owner).name;
        const bool fits = isNamed && run.columns() > 1;
        const QString label = fits ? fitting(letter + u' ' + name, width) : letter;
        QString svg = u"<text x=\"%1\" y=\"%2\" text-anchor=\"middle\">%3</text>"_s.arg(
            QString::number(left(run.begin) + run.columns() * cellWidth / 2), QString::number(middle(run.byte) + 5),
            Printable::xml(label));
        const auto number = [&](int column, int x, QLatin1StringView anchor) {
            svg += u"<text class=\"bit\" x=\"%1\" y=\"%2\" text-anchor=\"%3\">%4</text>"_s.arg(
                QString::number(x), QString::number(top(run.byte) + 12), anchor,
                QString::number(valueBit(run, column) + static_cast<quint32>(first())));
        };
        number(run.begin, left(run.begin) + 4, "start"_L1);
        if (run.columns() > 1)
            number(run.end - 1, left(run.end) - 4, "end"_L1);
        return svg;
    }

    /// Marks between the bits of a field.
    QString ticks() const
    {
        constexpr int length = 5;
        QString path;
        for (const Run &run : runs_) {
            for (int column = run.begin + 1; column < run.end; ++column)
                path += u"M%1.5 %2v%3"_s.arg(left(column)).arg(top(run.byte) + rowHeight_ - length).arg(length);
        }
        return u"<path class=\"ticks\" pointer-events=\"none\" fill=\"none\" stroke=\"#9aa3ad\" d=\"%1\"/>"_s.arg(path);
    }

    /// The lines around the fields.
    QString edges() const
    {
        QString path;
        for (int byte = 0; byte <= bytes_; ++byte) {
            for (int column = 0; column < byteBits; ++column) {
                if (owner(byte, column) != owner(byte - 1, column))
                    path += u"M%1 %2.5h%3"_s.arg(left(column)).arg(top(byte)).arg(cellWidth);
            }
        }
        for (int byte = 0; byte < bytes_; ++byte) {
            for (int column = 0; column <= byteBits; ++column) {
                if (owner(byte, column) != owner(byte, column - 1))
                    path += u"M%1.5 %2v%3"_s.arg(left(column)).arg(top(byte)).arg(rowHeight_);
            }
        }
        return u"<path class=\"edges\" pointer-events=\"none\" fill=\"none\" stroke=\"#59626d\" d=\"%1\"/>"_s.arg(path);
    }

    const Frame &frame_;
    FrameSvg::Count count_;
    std::vector<int> owners_;
    int bytes_;
    int rowHeight_;
    std::vector<Run> runs_;
};

QString at(int y, const QString &parts)
{
    return u"<g transform=\"translate(1 %1)\">"_s.arg(y) + parts + u"</g>"_s;
}

QString tableRow(const FrameSvg::Titled &titled, qsizetype field, int y)
{
    const FrameField &data = titled.frame.fields.at(field);
    const std::array cells{Frame::letterOf(static_cast<int>(field)), FrameSvg::startText(data.first, titled.count),
                           QString::number(data.bits), data.address, data.name.isEmpty() ? u"(unused)"_s : data.name};
    QString svg;
    for (size_t i = 0; i < cells.size(); ++i)
        svg += u"<text x=\"%1\" y=\"%2\">%3</text>"_s.arg(
            QString::number(columns.at(i)), QString::number(y),
            Printable::xml(fitting(cells.at(i), i + 1 < cells.size() ? frameWidth : frameWidth - columns.back())));
    return svg;
}

/// A frame with its title and table; moves `y` behind them.
QString block(const FrameSvg::Titled &titled, int &y)
{
    QString svg = at(y, u"<text class=\"title\" x=\"0\" y=\"18\">%1</text>"_s.arg(Printable::xml(titled.title)));
    y += titleHeight;
    if (titled.frame.bits <= Frame::mostBits) {
        const Drawing drawing(titled);
        svg += at(y, drawing.parts());
        y += drawing.height() + gap;
    }
    QString table;
    int row = lineHeight;
    constexpr std::array<QLatin1StringView, 5> heads{""_L1, "start"_L1, "bits"_L1, "address"_L1, "name"_L1};
    for (size_t i = 0; i < heads.size(); ++i)
        table += u"<text class=\"byte\" x=\"%1\" y=\"%2\">%3</text>"_s.arg(columns.at(i)).arg(row).arg(heads.at(i));
    for (qsizetype field = 0; field < titled.frame.fields.size(); ++field)
        table += tableRow(titled, field, row += lineHeight);
    svg += at(y, table);
    y += row + 2 * gap;
    return svg;
}

} // namespace

FrameSvg::Titled FrameSvg::of(const Pdo &pdo)
{
    return {.title = u"%1 %2, COB-ID %3"_s.arg(pdo.isTransmit ? u"TPDO"_s : u"RPDO"_s, QString::number(pdo.number),
                                               pdo.isEnabled ? pdo.cobId : u"off"_s),
            .frame = pdo.frame};
}

FrameSvg::Titled FrameSvg::of(const CheckedPGN &pgn)
{
    return {.title = u"PGN %1 %2, %3"_s.arg(QString::number(pgn.data.number), pgn.data.name,
                                            directionText(pgn.data.direction)),
            .frame = frameOf(pgn),
            .count = Count::FromOne};
}

FrameSvg::Titled FrameSvg::of(const CheckedCanId &canId)
{
    return {.title = u"CAN-ID %1 %2, %3"_s.arg(canIdText(canId.data.id), canId.data.name,
                                               directionText(canId.data.direction)),
            .frame = frameOf(canId)};
}

QString FrameSvg::startText(quint32 bit, Count count)
{
    const quint32 first = count == Count::FromOne ? 1 : 0;
    return u"%1.%2"_s.arg(bit / byteBits + first).arg(bit % byteBits + first);
}

QString FrameSvg::element(const Titled &titled)
{
    if (titled.frame.fields.isEmpty() || titled.frame.bits > Frame::mostBits)
        return {};
    const Drawing drawing(titled);
    return u"<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"frame\" role=\"img\" viewBox=\"0 0 %1 %2\" width=\"%1\" "
           "height=\"%2\" aria-label=\"%3\">"_s.arg(QString::number(frameWidth), QString::number(drawing.height()),
                                                    Printable::xml(titled.title)) +
           drawing.parts() + u"</svg>"_s;
}

QByteArray FrameSvg::document(const QList<Titled> &frames)
{
    int y = 1;
    QString parts;
    for (const Titled &frame : frames)
        parts += block(frame, y);
    const QString size = u"viewBox=\"0 0 %1 %2\" width=\"%1\" height=\"%2\""_s.arg(frameWidth + 2).arg(y);
    const QString svg = u"<svg xmlns=\"http://www.w3.org/2000/svg\" "_s + size + u">\n<style>"_s + style +
                        u"</style>\n"_s + parts + u"\n</svg>\n"_s;
    return svg.toUtf8();
}
