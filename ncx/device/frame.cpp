#include "ncx/device/frame.h"

#include <algorithm>

std::vector<int> Frame::owners() const
{
    const quint32 bytes = (std::min(bits, mostBits) + byteBits - 1) / byteBits;
    std::vector<int> owners(size_t{bytes} * byteBits, nobody);
    for (int i = 0; i < fields.size(); ++i) {
        const FrameField &field = fields.at(i);
        for (quint32 bit = field.first; bit < field.first + field.bits && bit < owners.size(); ++bit) {
            if (owners[bit] == nobody)
                owners[bit] = i;
        }
    }
    return owners;
}

QString Frame::letterOf(int field)
{
    constexpr int letters = 26;
    if (field < 2 * letters)
        return QChar(u'A' + field % letters + (field < letters ? 0 : u'a' - u'A'));
    return letterOf(field % letters) + QString::number(field / letters - 1);
}
