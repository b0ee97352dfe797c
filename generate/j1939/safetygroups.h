#pragma once

#include "generate/j1939/safetymapping.h"

#include <QList>
#include <QString>

class ObjectDataBase;
struct Dialect;

/// The safety data groups of a project (SAE J1939-76) on its J1939 lines.
struct SafetyGroups
{
    static SafetyGroups collect(ObjectDataBase &store, const Dialect &dialect, bool multiLine);

    /// Each received variable exists once for each sender.
    static bool keepsSendersApart(ObjectDataBase &store, const Dialect &dialect);

    struct Variable
    {
        QString name = {};
        QString cType = {};
    };

    struct Group
    {
        quint32 pgn = 0; ///< with the data page bits
        quint32 cycleMs = 0;
        quint32 validationMs = 0; ///< safety related validation time
        QString type = {};        ///< as the stack names it: "SDG_TYPE_0"
        QString profile = {};
        SafetyMapping::Frame frame = {};
        QList<Variable> variables = {};
    };

    struct Line
    {
        quint8 number = 0;
        QList<Group> received = {};
        QList<Group> transmitted = {};
    };

    bool multiLine = false;
    bool sendersApart = false;
    QList<Line> lines = {};  ///< all lines below 32; those without J1939 have no groups
    quint32 loopCounter = 0; ///< timer interrupts within which the data have to be checked

    qsizetype receivedCount() const;
    qsizetype transmittedCount() const;
};
