#include "nodedict/access.h"

#include <algorithm>

std::optional<CANopen::Access> CANopen::accessOf(QAnyStringView word)
{
    const auto known = std::ranges::find_if(accessWords, [word](QStringView one) { return word == one; });
    if (known == accessWords.end())
        return std::nullopt;
    return static_cast<Access>(known - accessWords.begin());
}

bool CANopen::fitsReceivePdo(QStringView word)
{
    const std::optional<Access> access = accessOf(word);
    return access == Access::WriteOnly || access == Access::ReadWrite || access == Access::ReadWriteOutput;
}

bool CANopen::fitsTransmitPdo(QStringView word)
{
    const std::optional<Access> access = accessOf(word);
    return access == Access::Const || access == Access::ReadOnly || access == Access::ReadWrite ||
           access == Access::ReadWriteInput;
}
