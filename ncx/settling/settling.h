#pragma once

#include "ncx/settling/settlingreport.h"

#include <QString>

#include <functional>

class DescriptionText;
class OpenedProject;

/// Makes a project of a device description: imports it into a line without objects, and settles what a description
/// cannot say, by the table of `settlingRows`.
struct Settling
{
    QString file;              ///< an EDS or DCF
    quint8 line = 0;           ///< which speaks CANopen
    bool isConfigured = false; ///< takes the values of a configured device as defaults
    bool repairs = false;      ///< mends faults of the file
    bool isText = false;       ///< the project will be saved as text
    bool takesNodeId = false;  ///< takes the node-id of the file, if it has one
    /// Asked between the steps; false ends it with that as the reason.
    std::function<bool()> goesOn = [] { return true; };

    /// Works on a project that is not saved yet. The reason for which that cannot be, a sentence part; empty if it is
    /// done. What was decided goes to the report; the faults that are left are the errors and warnings of the check.
    QString settle(OpenedProject &project, SettlingReport &report) const;

private:
    QString importInto(OpenedProject &project, const DescriptionText &text, SettlingReport &report) const;
    [[nodiscard]] bool mendAll(OpenedProject &project, const DescriptionText &text, SettlingReport &report) const;
};
