#pragma once

#include <QLatin1StringView>

/// Settings of a line's device description (CiA 306) that a line has from its beginning.
namespace DescriptionDefaults {

using namespace Qt::Literals::StringLiterals;

struct Row
{
    QLatin1StringView key;
    QLatin1StringView value;
};

/// What a line's device description (CiA 306) holds until the user sets it.
inline constexpr Row all[] = {
    {"BaudRate_10"_L1, "0"_L1},   {"BaudRate_20"_L1, "0"_L1},   {"BaudRate_50"_L1, "0"_L1},
    {"BaudRate_125"_L1, "1"_L1},  {"BaudRate_250"_L1, "1"_L1},  {"BaudRate_500"_L1, "0"_L1},
    {"BaudRate_800"_L1, "0"_L1},  {"BaudRate_1000"_L1, "0"_L1}, {"Dummy0001"_L1, "0"_L1},
    {"Dummy0002"_L1, "0"_L1},     {"Dummy0003"_L1, "0"_L1},     {"Dummy0004"_L1, "0"_L1},
    {"Dummy0005"_L1, "0"_L1},     {"Dummy0006"_L1, "0"_L1},     {"Dummy0007"_L1, "0"_L1},
    {"LSS_Supported"_L1, "0"_L1}, {"SelfStarting"_L1, "0"_L1},  {"VendorName"_L1, ""_L1},
    {"ProductName"_L1, ""_L1},    {"CreatedBy"_L1, ""_L1},      {"ModifiedBy"_L1, ""_L1},
    {"FileVersion"_L1, "1"_L1},   {"FileRevision"_L1, "1"_L1},  {"OrderCode"_L1, "0815-BUY-ME"_L1},
    {"Granularity"_L1, "0"_L1},   {"Comment"_L1, ""_L1},        {"AdditionalSections"_L1, ""_L1},
};

/// Empty for a key that is not among them.
constexpr QLatin1StringView of(QLatin1StringView key)
{
    for (const Row &row : all) {
        if (row.key == key)
            return row.value;
    }
    return {};
}

} // namespace DescriptionDefaults
